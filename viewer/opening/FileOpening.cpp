#include <viewer/opening/FileOpening.h>

#include <viewer/frame/Commands.h>
#include <viewer/frame/Folders.h>
#include <viewer/frame/Workspace.h>
#include <viewer/maps/MapDocument.h>
#include <viewer/maps/MapWindow.h>
#include <viewer/maps/Secrets.h>
#include <viewer/opening/FolderContents.h>
#include <viewer/opening/MapDownload.h>
#include <viewer/opening/OpenAddressDialog.h>
#include <viewer/opening/OpenFailures.h>
#include <viewer/sources/Sources.h>

#include <corvane/core/Application.h>

#include <QAction>
#include <QActionGroup>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QStatusBar>
#include <QThreadPool>

namespace Corvane::Viewer {
namespace {

const char* const placeKey = "Viewer/openInActiveMap";
constexpr int mostUnasked = 20; // images of a folder

} // namespace

FileOpening::FileOpening(Workspace* newWindow)
    : QObject(newWindow),
      window(newWindow),
      failures(new OpenFailures(newWindow))
{
    createCommands();
}

FileOpening::Place FileOpening::usualPlace()
{
    return Application::instance()->getSettings()->value(placeKey, false).toBool() ? ActiveMap
                                                                                   : NewWindows;
}

FileOpening::Place FileOpening::otherPlace(Place place)
{
    return place == NewWindows ? ActiveMap : NewWindows;
}

void FileOpening::setUsualPlace(Place place)
{
    Application::instance()->getSettings()->setValue(placeKey, place == ActiveMap);
}

void FileOpening::createCommands()
{
    addCommand(window, "actionOpenFolder", [this] { chooseFolder(); });
    addCommand(window, "actionOpenAddress", [this] { chooseAddress(); });
    inWindows =
        addSwitch(window, "actionOpenInWindows", [this](bool) { setUsualPlace(NewWindows); });
    inMap = addSwitch(window, "actionOpenInMap", [this](bool) { setUsualPlace(ActiveMap); });
    const auto group = new QActionGroup(this);
    group->addAction(inWindows);
    group->addAction(inMap);
    (usualPlace() == ActiveMap ? inMap : inWindows)->setChecked(true);
}

void FileOpening::chooseFolder()
{
    const auto dialog = new QFileDialog(window, tr("Open Folder"), lastFolder());
    dialog->setObjectName("openFolderDialog");
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& folder) {
        keepFolderOf(folder);
        open({folder}, usualPlace());
    });
    dialog->open();
}

void FileOpening::chooseAddress()
{
    const auto dialog = new OpenAddressDialog(window);
    connect(dialog, &OpenAddressDialog::chosen, this,
            [this](const QString& address) { open({address}, usualPlace()); });
    dialog->open();
}

void FileOpening::open(const QStringList& sources, Place place)
{
    Target target;
    target.place = place;
    take(sources, target);
}

void FileOpening::addTo(MapWindow* map, const QStringList& sources)
{
    Target target;
    target.place = ActiveMap;
    target.map = map;
    target.hasMap = true;
    take(sources, target);
}

/// What may be a folder follows when its disk has answered, which holds nothing else up.
void FileOpening::take(const QStringList& sources, const Target& target)
{
    const FolderContents contents;
    QStringList known;
    QStringList folders;
    for (const QString& text : sources) {
        const QString source = absoluteSource(text);
        if (source.startsWith("ftp://", Qt::CaseInsensitive)) {
            known << "/vsicurl/" + source;
        } else if (isMapAddress(source)) {
            fetchMap(source);
        } else if (!source.isEmpty()) {
            (contents.isSource(source) ? known : folders) << source;
        }
    }
    openNow(known, target);
    for (const QString& folder : folders) {
        lookInto(folder, target);
    }
}

void FileOpening::lookInto(const QString& folder, const Target& target)
{
    const QPointer<FileOpening> self(this);
    folderThreads().start([self, folder, target, contents = FolderContents()] {
        const QStringList found = contents.sourcesIn(folder);
        QMetaObject::invokeMethod(
            qApp,
            [self, folder, found, target] {
                if (!self) {
                    return;
                }
                if (found.size() > mostUnasked) {
                    self->askWhetherAll(folder, found, target);
                } else {
                    self->openNow(found, target);
                }
            },
            Qt::QueuedConnection);
    });
}

void FileOpening::askWhetherAll(const QString& folder, const QStringList& sources,
                                const Target& target)
{
    const auto box =
        new QMessageBox(QMessageBox::Question, tr("Open Folder"),
                        tr("Open all %n image(s) of %1?", nullptr, sources.size()).arg(folder),
                        QMessageBox::Cancel, window);
    box->setObjectName("openManyQuestion");
    box->setTextFormat(Qt::PlainText);
    box->setAttribute(Qt::WA_DeleteOnClose);
    QPushButton* const all = box->addButton(tr("&Open All"), QMessageBox::AcceptRole);
    all->setObjectName("openAll");
    box->setDefaultButton(QMessageBox::Cancel);
    connect(all, &QPushButton::clicked, this,
            [this, sources, target] { openNow(sources, target); });
    box->open();
}

void FileOpening::openNow(const QStringList& sources, const Target& target)
{
    if (sources.isEmpty() || (target.hasMap && !target.map)) {
        return;
    }
    if (target.place == ActiveMap) {
        window->addFiles(sources, target.map ? target.map.data() : window->getActiveMapWindow());
    } else {
        window->openFiles(sources);
    }
}

void FileOpening::fetchMap(const QString& address)
{
    const QString shown = withoutSecrets(address);
    const auto download = new MapDownload(address, this);
    window->statusBar()->showMessage(tr("Fetching %1").arg(shown));
    connect(download, &MapDownload::fetched, this, [this, download](const QString& file) {
        window->statusBar()->clearMessage();
        MapWindow* const map = window->addMapWindow();
        download->setParent(map); // the file is read later, and goes with the download
        map->restoreDocument(file, KeptMap{download->getName(), QString(), false, 0});
    });
    connect(download, &MapDownload::failed, this, [this, download, shown](const QString& reason) {
        window->statusBar()->clearMessage();
        failures->add(shown, reason);
        download->deleteLater();
    });
    download->start();
}

} // namespace Corvane::Viewer
