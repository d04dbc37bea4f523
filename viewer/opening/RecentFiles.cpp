#include <viewer/opening/RecentFiles.h>

#include <viewer/frame/NoticeBar.h>
#include <viewer/maps/LayerOpener.h>
#include <viewer/maps/Secrets.h>

#include <corvane/core/Application.h>

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <QSettings>

namespace Corvane::Viewer {
namespace {

const char* const recentKey = "Viewer/recent";
constexpr int mostEntries = 10;
constexpr int widestPath = 60; // characters

QString shortened(const QString& source)
{
    return source.size() <= widestPath ? source
                                       : QString::fromUtf8("\u2026") + source.right(widestPath - 1);
}

/// "&1 shore.tif  (/data/shore.tif)", with the first nine under their digit.
QString entryText(int number, const QString& source)
{
    QString text =
        QString("%1  (%2)").arg(LayerOpener::nameOf(source), shortened(source)).replace('&', "&&");
    return QString(number < 10 ? "&%1 " : "%1 ").arg(number) + text;
}

} // namespace

RecentFiles::RecentFiles(QWidget* owner)
    : QObject(owner),
      menu(new QMenu(tr("Open &Recent"), owner))
{
    menu->setObjectName("recentMenu");
    menu->setToolTipsVisible(true);
    // another program of the user may have added to the list
    connect(menu, &QMenu::aboutToShow, this, &RecentFiles::fillMenu);
    fillMenu();
}

QMenu* RecentFiles::getMenu() const
{
    return menu;
}

QStringList RecentFiles::list()
{
    return Application::instance()->getSettings()->value(recentKey).toStringList().mid(0,
                                                                                       mostEntries);
}

void RecentFiles::add(const QString& source)
{
    if (source.isEmpty() || withoutSecrets(source) != source) {
        return;
    }
    QStringList sources = list();
    sources.removeAll(source);
    sources.prepend(source);
    store(sources.mid(0, mostEntries));
}

void RecentFiles::remove(const QString& source)
{
    QStringList sources = list();
    sources.removeAll(source);
    store(sources);
}

void RecentFiles::offerToRemove(const QString& source)
{
    const auto window = qobject_cast<QMainWindow*>(parent());
    if (!window || !list().contains(source)) {
        return;
    }
    const auto bar = new NoticeBar(window, "recentNotice",
                                   tr("%1 cannot be opened any more.").arg(shortened(source)));
    bar->offer("removeRecent", tr("&Remove from Open Recent"), [this, source] { remove(source); });
}

void RecentFiles::store(const QStringList& sources)
{
    Application::instance()->getSettings()->setValue(recentKey, sources);
    fillMenu();
}

void RecentFiles::fillMenu()
{
    const QStringList sources = list();
    menu->clear();
    menu->setEnabled(!sources.isEmpty());
    int number = 0;
    for (const QString& source : sources) {
        QAction* entry = menu->addAction(entryText(++number, source));
        entry->setData(source);
        entry->setToolTip(source);
        // queued: what comes of it may fill this menu anew
        connect(
            entry, &QAction::triggered, this, [this, source] { emit chosen(source); },
            Qt::QueuedConnection);
    }
    menu->addSeparator();
    QAction* clear = menu->addAction(tr("&Clear List"));
    clear->setObjectName("actionClearRecent");
    connect(
        clear, &QAction::triggered, this, [this] { store(QStringList()); }, Qt::QueuedConnection);
}

} // namespace Corvane::Viewer
