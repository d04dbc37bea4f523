#pragma once

#include <QApplication>
#include <QPointer>
#include <QString>

#include <memory>

// Stands in the library, and knows nothing of it.
#if defined(CORVANE_BUILD)
#define QTSINGLEAPPLICATION_EXPORT Q_DECL_EXPORT
#else
#define QTSINGLEAPPLICATION_EXPORT Q_DECL_IMPORT
#endif

class InstancePeer;
class QWidget;

/// A QApplication that knows the other running instances of its program, user and display: the first
/// one receives the messages of the later ones. The text of the dynamic property "instanceScope", set
/// before the first question about instances, parts them further. GUI thread only.
class QTSINGLEAPPLICATION_EXPORT QtSingleApplication : public QApplication
{
    Q_OBJECT
public:
    /// The program's own path is the id. Qt 5 has no QApplication without a GUI: with GUIenabled
    /// false the caller chooses a platform that needs no display, "offscreen" or "minimal", with
    /// QT_QPA_PLATFORM or -platform.
    QtSingleApplication(int& argc, char** argv, bool GUIenabled = true);
    /// Instances with the same id belong together, whatever program they are.
    QtSingleApplication(const QString& id, int& argc, char** argv);
    /// Gives up the place of the first instance.
    ~QtSingleApplication() override;

    /// Whether another instance is the first one. Otherwise this one is from here on; it also
    /// takes the place of a first instance that has died.
    bool isRunning();
    QString id() const;

    /// The window that activateWindow brings to the front, not owned; with activateOnMessage every
    /// message does so.
    void setActivationWindow(QWidget* window, bool activateOnMessage = true);
    /// Null where none was set or the window is gone.
    QWidget* activationWindow() const;

    /// For programs written for older versions; isRunning does the same.
    void initialize(bool dummy = true);

public slots:
    /// Hands message to the first instance and waits up to timeout milliseconds, -1 for ever,
    /// until that one has it. False where this is the first one, or no answer came.
    bool sendMessage(const QString& message, int timeout = 5000);
    /// Brings the activation window to the front, out of its minimised state too.
    void activateWindow();

signals:
    /// Another instance has sent a message.
    void messageReceived(const QString& message);

private:
    InstancePeer* meet();

    QString applicationId;
    std::unique_ptr<InstancePeer> peer; // from the first question on
    QPointer<QWidget> windowToActivate;
};
