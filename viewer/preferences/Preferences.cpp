#include <viewer/preferences/Preferences.h>

#include <viewer/frame/CommandKeys.h>
#include <viewer/frame/Commands.h>
#include <viewer/preferences/AppearancePage.h>
#include <viewer/preferences/CommandKeysPage.h>
#include <viewer/preferences/MapPreferencesPage.h>
#include <viewer/preferences/PreferencesDialog.h>

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
