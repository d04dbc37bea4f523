#pragma once

#include <viewer/window/ViewerWindow.h>

#include <QObject>
#include <QString>
#include <QTemporaryDir>

#include <memory>

class QAction;

namespace Corvane::Viewer {
class MapWindow;
}

/// What the tests of opening begin with: the program's window, and a folder for images.
class OpeningStage : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();

protected:
    QString path(const QString& name) const { return folder->filePath(name); }
    QString writeImage(const QString& name, int side = 64) const;
    QAction* action(const QString& name) const;
    Corvane::Viewer::MapWindow* map(int index = 0) const;
    bool isOpen(Corvane::Viewer::MapWindow* of, int layers) const;

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<Corvane::Viewer::ViewerWindow> window;
};
