#include "QtSingleApplication.h"

#include "InstancePeer_p.h"

#include <QWidget>

namespace {

/// What the windows of this program stand on; screens of one X server are one display.
QString displayName()
{
    const QString platform = QGuiApplication::platformName();
    if (platform == QLatin1String("xcb")) {
        const QString display = qEnvironmentVariable("DISPLAY");
        const int screen = display.lastIndexOf(QLatin1Char('.'));
        return platform +
               (screen > display.lastIndexOf(QLatin1Char(':')) ? display.left(screen) : display);
    }
    if (platform.startsWith(QLatin1String("wayland"))) {
        return platform + qEnvironmentVariable("WAYLAND_DISPLAY");
    }
    return platform;
}

} // namespace

QtSingleApplication::QtSingleApplication(int& argc, char** argv, bool GUIenabled)
    : QApplication(argc, argv),
      applicationId(applicationFilePath())
{
    Q_UNUSED(GUIenabled)
}

QtSingleApplication::QtSingleApplication(const QString& id, int& argc, char** argv)
    : QApplication(argc, argv),
      applicationId(id)
{
}

QtSingleApplication::~QtSingleApplication() = default;

bool QtSingleApplication::isRunning()
{
    return meet()->isLater();
}

QString QtSingleApplication::id() const
{
    return applicationId;
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
    return meet()->send(message, timeout);
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

InstancePeer* QtSingleApplication::meet()
{
    if (!peer) {
        const QString scope =
            displayName() + QLatin1Char('\n') + property("instanceScope").toString();
        peer = std::make_unique<InstancePeer>(applicationId, scope);
        connect(peer.get(), &InstancePeer::messageReceived, this,
                &QtSingleApplication::messageReceived);
    }
    return peer.get();
}
