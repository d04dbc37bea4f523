#pragma once

#include <corvane/core/Export.h>
#include <corvane/core/LogLevel.h>

#include <QList>
#include <QSharedPointer>
#include <QString>
#include <QtGlobal>
#include <QtSingleApplication>

class QDateTime;
class QEvent;
class QMainWindow;
class QMessageLogContext;
class QSettings;
class QStringList;
class QTranslator;

namespace Corvane {

class LogMessageHandler;

/// The process object of a viewer program: names organisation and program, holds the one settings
/// store, remembers the widget style, loads translations and carries the log.
/// Built before any widget or other part of the library; GUI thread only, save logMessage.
class CORVANE_EXPORT Application : public QtSingleApplication
{
    Q_OBJECT
public:
    /// A GUI application. Settings live in a per-user INI file named after the program.
    Application(int& argc, char** argv, QString applicationName);
    /// guiEnabled false builds it without a style; used for work without a display.
    Application(int& argc, char** argv, bool guiEnabled, QString applicationName);
    /// Clears the log handler, stores the style and flushes the settings.
    ~Application() override;

    /// Has the application object that is made next keep its settings in this INI file; empty for the
    /// user's own.
    static void useSettingsFile(const QString& fileName);

    /// The store of all settings; owned here, valid while the application object lives.
    QSettings* getSettings();
    /// The first top-level main window, or null. Owned elsewhere.
    QMainWindow* getMainWindow();

    /// Sets the default locale to language and installs the file MODULE_LANGUAGE of each module
    /// from the folder "translations" beside the program. Keep the result for as long as the
    /// translations are wanted. A file that does not load is left out, with a warning.
    QList<QSharedPointer<QTranslator>> initializeTranslations(const QStringList& modules,
                                                              const QString& language);

    /// The application object, or null where it is absent or of another class.
    static Application* instance();
    /// The version that programs show, as four numbers.
    static QString applicationVersion();
    /// The same as applicationVersion.
    static QString libraryVersion();
    /// The widget style that is used where the settings name none.
    static QString getNativeSystemStyleName();

    /// Replaces the sink of log lines; it is not owned, null for none.
    static void installLogMessageHandler(LogMessageHandler* handler);
    /// Hands the line to the sink unless level is below the sink's own. Any thread.
    static void logMessage(const QString& message, LogLevel level, const QDateTime& time);
    /// Sets the sink's level; without a sink it does nothing.
    static void setLogLevel(LogLevel level);
    /// The sink's level, Information without one.
    static LogLevel getLogLevel();
    /// The translated display name of a level.
    static QString getLogLevelStr(LogLevel level);
    /// Whether Qt's own messages go to the sink, or the way Qt sends them.
    static void setQtLogging(bool enabled);

protected:
    /// Turns the desktop's request to open a file into messageReceived.
    bool event(QEvent* event) override;

private:
    void init(QString applicationName);
    void applyStyle();
    static void qtMessageHandler(QtMsgType type, const QMessageLogContext& context,
                                 const QString& message);

    QSettings* settings = nullptr; // owned
    QList<QSharedPointer<QTranslator>> translators;
};

} // namespace Corvane
