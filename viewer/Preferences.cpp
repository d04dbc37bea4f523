#include <viewer/Preferences.h>

#include <viewer/AppearancePage.h>
#include <viewer/CommandKeys.h>
#include <viewer/CommandKeysPage.h>
#include <viewer/Commands.h>
#include <viewer/MapPreferencesPage.h>
#include <viewer/PreferencesDialog.h>

#include <corvane/core/PluginManager.h>

#include <QAction>

namespace Corvane::Viewer {

Preferences::Preferences(QWidget* newWindow)
    : QObject(newWindow),
      window(newWindow),
      keys(new CommandKeys(newWindow))
{
    addCommand(window, "actionPreferences", [this] {
        show();
    })->setMenuRole(QAction::PreferencesRole);
}

void Preferences::takeKeys()
{
    keys->takeOver();
}

void Preferences::show()
{
    QList<QWidget*> pages = {new AppearancePage, new MapPreferencesPage, new CommandKeysPage(keys)};
    pages << PluginManager::getLayerPluginPrefsPages();
    auto* const dialog = new PreferencesDialog(pages, window);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
}

} // namespace Corvane::Viewer
