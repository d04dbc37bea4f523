#pragma once

#include <viewer/window/ViewerWindow.h>

#include <QMessageBox>
#include <QObject>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

class QAction;

namespace Corvane::Viewer {
class MapWindow;
}

/// What the tests of saved maps begin with: the program's window, an empty folder, and beside it the
/// images "metres.tif" and "degrees.tif".
class MapStage : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();

protected:
    static QString rasterElement(const QString& source);

    QString path(const QString& name) const { return folder->filePath(name); }
    QList<Corvane::Viewer::MapWindow*> mapWindows() const;
    Corvane::Viewer::MapWindow* open(const QStringList& files, int layers = 1);
    QAction* action(const QString& name) const;
    template <typename Dialog>
    Dialog* dialog(const QString& name) const
    {
        return window->findChild<Dialog*>(name);
    }
    void choose(const QString& file) const;
    void answer(QMessageBox::StandardButton button) const;
    Corvane::Viewer::MapWindow* changedMap(const QString& name = "coast.cmap");
    QString write(const QString& name, const QString& text) const;
    QStringList recentEntries() const;

    QTemporaryDir images;
    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<Corvane::Viewer::ViewerWindow> window;
};
