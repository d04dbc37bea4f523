#include "QtSingleApplication.h"

#include "InstancePeer_p.h"

#include <QWidget>

QtSingleApplication::QtSingleApplication(int& argc, char** argv, bool GUIenabled)
    : QApplication(argc, argv),
      peer(std::make_unique<InstancePeer>(applicationFilePath()))
{
    Q_UNUSED(GUIenabled)
    connectPeer();
}

QtSingleApplication::QtSingleApplication(const QString& id, int& argc, char** argv)
    : QApplication(argc, argv),
      peer(std::make_unique<InstancePeer>(id))
{
    connectPeer();
}

QtSingleApplication::~QtSingleApplication() = default;

bool QtSingleApplication::isRunning()
{
    return peer->isLater();
}

QString QtSingleApplication::id() const
{
    return peer->id();
}

void QtSingleApplication::setActivationWindow(QWidget* window, bool activateOnMessage)
{
    windowToActivate = window;
    disconnect(this, &QtSingleApplication::messageReceived, this,
               &QtSingleApplication::activateWindow);
    if (activateOnMessage) {
        connect(this, &QtSingleApplication::messageReceived, this,
                &QtSingleApplication::activateWindow);
    }
}

QWidget* QtSingleApplication::activationWindow() const
{
    return windowToActivate;
}

void QtSingleApplication::initialize(bool dummy)
{
    Q_UNUSED(dummy)
    isRunning();
}

bool QtSingleApplication::sendMessage(const QString& message, int timeout)
{
    return peer->send(message, timeout);
}

void QtSingleApplication::activateWindow()
{
    if (!windowToActivate) {
        return;
    }
    windowToActivate->setWindowState(windowToActivate->windowState() & ~Qt::WindowMinimized);
    windowToActivate->raise();
    windowToActivate->activateWindow();
}

void QtSingleApplication::connectPeer()
{
    connect(peer.get(), &InstancePeer::messageReceived, this,
            &QtSingleApplication::messageReceived);
}
