#include <viewer/opening/MapSaving.h>

#include <viewer/frame/Folders.h>
#include <viewer/frame/Workspace.h>
#include <viewer/maps/MapDocument.h>
#include <viewer/maps/MapWindow.h>

#include <corvane/map/MapView.h>

#include <QAction>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>

namespace Corvane::Viewer {
namespace {

const char* const suffix = "cmap";

} // namespace

MapSaving::MapSaving(Workspace* owner)
    : QObject(owner),
      workspace(owner),
      saveAction(new QAction(owner)),
      saveAsAction(new QAction(owner))
{
    saveAction->setObjectName("actionSave");
    saveAsAction->setObjectName("actionSaveAs");
    connect(saveAction, &QAction::triggered, this, [this] { save(window, Next()); });
    connect(saveAsAction, &QAction::triggered, this, [this] { saveAs(window, Next()); });
    setMapWindow(nullptr);
}

void MapSaving::setMapWindow(MapWindow* newWindow)
{
    window = newWindow;
    saveAction->setEnabled(window != nullptr);
    saveAsAction->setEnabled(window != nullptr);
}

bool MapSaving::mayClose(MapWindow* map, const std::function<void()>& then)
{
    if (givenUp.contains(map) || !map->getDocument()->isChanged()) {
        return true;
    }
    askAboutChanges(map, then);
    return false;
}

void MapSaving::keepChanges()
{
    givenUp.clear();
}

void MapSaving::askAboutChanges(MapWindow* map, const Next& then)
{
    if (map->getDialogParent()->findChild<QMessageBox*>("saveQuestion")) {
        return; // it is open already
    }
    const bool hasFile = !map->getDocument()->getFileName().isEmpty();
    const QString text = hasFile ? tr("Save the changes to %1?") : tr("Save this map of %1?");
    QMessageBox* box = makeBox(map, "saveQuestion", text.arg(map->getName()));
    box->setInformativeText(tr("What is not saved is lost."));
    box->setStandardButtons(QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel);
    box->setDefaultButton(QMessageBox::Save);
    connect(box, &QMessageBox::finished, map, [this, map, then](int answer) {
        if (answer == QMessageBox::Save) {
            save(map, then);
        } else if (answer == QMessageBox::Discard) {
            givenUp.insert(map);
            connect(map, &QObject::destroyed, this, [this, map] { givenUp.remove(map); });
            then();
        } else {
            keepChanges();
        }
    });
    box->open();
}

bool MapSaving::waitsForReading(MapWindow* map, const Next& saving)
{
    MapDocument* const document = map->getDocument();
    if (!document->isLoading()) {
        return false;
    }
    const char* const name = "savesLater";
    if (!document->findChild<QObject*>(name, Qt::FindDirectChildrenOnly)) { // else it does already
        auto* const once = new QObject(document);
        once->setObjectName(name);
        connect(document, &MapDocument::changed, once, [once, document, saving] {
            if (!document->isLoading()) {
                document->disconnect(once);
                once->setObjectName(QString());
                once->deleteLater();
                saving();
            }
        });
    }
    return true;
}

void MapSaving::save(MapWindow* map, const Next& then)
{
    if (!map || waitsForReading(map, [this, map, then] { save(map, then); })) {
        return;
    }
    if (map->getDocument()->getFileName().isEmpty()) {
        saveAs(map, then);
    } else if (map->getDocument()->getMissingCount() > 0) {
        askAboutMissingLayers(map, then);
    } else {
        write(map, map->getDocument()->getFileName(), then);
    }
}

void MapSaving::askAboutMissingLayers(MapWindow* map, const Next& then)
{
    QMessageBox* box = makeBox(
        map, "missingLayersQuestion",
        tr("Some layers of %1 could not be opened and are not in the map.").arg(map->getName()));
    box->setInformativeText(tr("Saving takes them out of the file as well."));
    box->setStandardButtons(QMessageBox::Save | QMessageBox::Cancel);
    box->setDefaultButton(QMessageBox::Cancel);
    connect(box, &QMessageBox::finished, map, [this, map, then](int answer) {
        if (answer == QMessageBox::Save) {
            write(map, map->getDocument()->getFileName(), then);
        } else {
            keepChanges();
        }
    });
    box->open();
}

void MapSaving::saveAs(MapWindow* map, const Next& then)
{
    if (!map || waitsForReading(map, [this, map, then] { saveAs(map, then); })) {
        return;
    }
    const QString current = map->getDocument()->getFileName();
    const auto dialog = new QFileDialog(map->getDialogParent(), tr("Save Map"), lastFolder());
    dialog->setObjectName("saveMapDialog");
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setNameFilters({tr("Corvane map (*.cmap)")});
    dialog->setDefaultSuffix(suffix);
    if (current.isEmpty()) {
        dialog->selectFile(QFileInfo(map->getName()).completeBaseName() + '.' + suffix);
    } else {
        dialog->setDirectory(QFileInfo(current).absolutePath());
        dialog->selectFile(current);
    }
    connect(dialog, &QFileDialog::fileSelected, map, [this, map, then](const QString& fileName) {
        keepFolderOf(fileName);
        if (isOpenElsewhere(map, fileName)) {
            keepChanges();
            showFailure(map,
                        tr("%1 is open in another window. Close it there, or choose another name.")
                            .arg(fileName));
        } else {
            write(map, fileName, then);
        }
    });
    connect(dialog, &QFileDialog::rejected, this, &MapSaving::keepChanges);
    dialog->open();
}

/// The two windows would take turns in replacing what the other one has saved.
bool MapSaving::isOpenElsewhere(const MapWindow* map, const QString& fileName) const
{
    const MapWindow* const other = workspace->mapWindowOf(fileName);
    return other && other != map;
}

void MapSaving::write(MapWindow* map, const QString& fileName, const Next& then)
{
    MapDocument* document = map->getDocument();
    const auto once = new QObject(document);
    connect(document, &MapDocument::saved, once,
            [this, once, map, then](bool ok, const QString& name, const QString& reason) {
                once->deleteLater();
                if (!ok) {
                    keepChanges();
                    showFailure(map, tr("cannot write %1: %2").arg(name, reason));
                    return;
                }
                emit saved(name);
                if (then) {
                    then();
                }
            });
    document->save(fileName);
}

void MapSaving::showFailure(MapWindow* map, const QString& text)
{
    QMessageBox* box = makeBox(map, "saveMapFailure", text);
    box->setIcon(QMessageBox::Warning);
    box->setStandardButtons(QMessageBox::Ok);
    box->open();
}

QMessageBox* MapSaving::makeBox(MapWindow* map, const QString& name, const QString& text) const
{
    const auto box = new QMessageBox(QMessageBox::Question, tr("Save Map"), text,
                                     QMessageBox::NoButton, map->getDialogParent());
    box->setObjectName(name);
    box->setTextFormat(Qt::PlainText);
    box->setAttribute(Qt::WA_DeleteOnClose);
    return box;
}

} // namespace Corvane::Viewer
