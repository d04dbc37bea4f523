#include <corvane/core/Application.h>

#include <corvane/core/LogMessageHandler.h>

#include <QDateTime>
#include <QFileOpenEvent>
#include <QLocale>
#include <QMainWindow>
#include <QOperatingSystemVersion>
#include <QSettings>
#include <QStringList>
#include <QStyle>
#include <QTranslator>

#include <atomic>

namespace Corvane {

namespace {

const char* const organizationTitle = "Corvane Geospatial";
const char* const organizationWebDomain = "corvane.com";
const char* const versionText = "16.7.0.1963";
const char* const styleKey = "Gui/style";
const char* const logQtMessagesKey = "Gui/MainWindow/LogQtMessages";

// Not owned. Atomic because pool threads read it; it guards nothing beyond itself.
std::atomic<LogMessageHandler*> logMessageHandler{nullptr};

QString& chosenSettingsFile()
{
    static QString fileName;
    return fileName;
}

} // namespace

Application::Application(int& argc, char** argv, QString applicationName)
    : QtSingleApplication(argc, argv, true)
{
    init(applicationName);
    applyStyle();
}

Application::Application(int& argc, char** argv, bool guiEnabled, QString applicationName)
    : QtSingleApplication(argc, argv, guiEnabled)
{
    init(applicationName);
    if (guiEnabled) {
        applyStyle();
    }
}

Application::~Application()
{
    logMessageHandler = nullptr; // first: nothing logs from here on
    if (inherits("QGuiApplication")) {
        settings->setValue(styleKey, QApplication::style()->objectName());
    }
    delete settings; // writes the file
    settings = nullptr;
    translators.clear();
}

void Application::useSettingsFile(const QString& fileName)
{
    chosenSettingsFile() = fileName;
}

QSettings* Application::getSettings()
{
    return settings;
}

QMainWindow* Application::getMainWindow()
{
    const QWidgetList widgets = QApplication::topLevelWidgets();
    for (QWidget* widget : widgets) {
        if (auto* window = qobject_cast<QMainWindow*>(widget)) {
            return window;
        }
    }
    return nullptr;
}

QList<QSharedPointer<QTranslator>> Application::initializeTranslations(const QStringList& modules,
                                                                       const QString& language)
{
    QLocale::setDefault(QLocale(language));
    const QString directory = applicationDirPath() + QStringLiteral("/translations");
    QList<QSharedPointer<QTranslator>> installed;
    for (const QString& module : modules) {
        const QString fileName = module + QLatin1Char('_') + language;
        const auto translator = QSharedPointer<QTranslator>::create();
        if (!translator->load(fileName, directory, QString(), QString())) {
            qWarning("Can't load module translator file '%s' in directory '%s'.",
                     fileName.toLocal8Bit().constData(), directory.toLocal8Bit().constData());
            continue;
        }
        installTranslator(translator.data());
        installed.append(translator);
    }
    return installed;
}

Application* Application::instance()
{
    return qobject_cast<Application*>(QCoreApplication::instance());
}

QString Application::applicationVersion()
{
    return QString::fromLatin1(versionText);
}

QString Application::libraryVersion()
{
    return QString::fromLatin1(versionText);
}

QString Application::getNativeSystemStyleName()
{
#ifdef Q_OS_WIN
    const bool hasVistaStyle =
        QOperatingSystemVersion::current().type() == QOperatingSystemVersion::Windows &&
        QOperatingSystemVersion::current() >= QOperatingSystemVersion::Windows7;
    return hasVistaStyle ? QStringLiteral("windowsvista") : QStringLiteral("windows");
#else
    return QStringLiteral("fusion");
#endif
}

void Application::installLogMessageHandler(LogMessageHandler* handler)
{
    logMessageHandler = handler;
}

// Any thread.
void Application::logMessage(const QString& message, LogLevel level, const QDateTime& time)
{
    LogMessageHandler* const handler = logMessageHandler;
    if (handler && static_cast<int>(level) >= static_cast<int>(handler->getLogLevel())) {
        handler->logMessage(message, level, time);
    }
}

void Application::setLogLevel(LogLevel level)
{
    if (LogMessageHandler* const handler = logMessageHandler) {
        handler->setLogLevel(level);
    }
}

LogLevel Application::getLogLevel()
{
    LogMessageHandler* const handler = logMessageHandler;
    return handler ? handler->getLogLevel() : Information;
}

QString Application::getLogLevelStr(LogLevel level)
{
    switch (level) {
    case Debug:
        return tr("Debug");
    case Information:
        return tr("Information");
    case Warning:
        return tr("Warning");
    case Error:
        return tr("Error");
    case Critical:
        return tr("Critical");
    case None:
        break;
    }
    return tr("None");
}

void Application::setQtLogging(bool enabled)
{
    qInstallMessageHandler(enabled ? &Application::qtMessageHandler : nullptr);
}

bool Application::event(QEvent* event)
{
    if (event->type() != QEvent::FileOpen) {
        return QApplication::event(event);
    }
    const auto* request = static_cast<QFileOpenEvent*>(event);
    if (!request->file().isEmpty()) {
        emit messageReceived(request->file());
    } else if (!request->url().isEmpty()) {
        emit messageReceived(request->url().url());
    }
    return true;
}

void Application::init(QString applicationName)
{
    setOrganizationName(QString::fromLatin1(organizationTitle));
    setOrganizationDomain(QString::fromLatin1(organizationWebDomain));
    applicationName.replace(QLatin1Char(':'), QLatin1Char(' '));
    setApplicationName(applicationName.simplified());
    // The file keeps the name's double spaces: settings written so far stand under it.
    settings = chosenSettingsFile().isEmpty()
                   ? new QSettings(QSettings::IniFormat, QSettings::UserScope, organizationName(),
                                   applicationName)
                   : new QSettings(chosenSettingsFile(), QSettings::IniFormat);
    setQtLogging(settings->value(logQtMessagesKey, false).toBool());
}

void Application::applyStyle()
{
    const QString name = settings->value(styleKey, getNativeSystemStyleName()).toString();
    if (!name.isEmpty()) {
        setStyle(name);
    }
}

// Any thread. Qt's messages pass the sink's level by: whoever switches them on wants them all.
void Application::qtMessageHandler(QtMsgType type, const QMessageLogContext& context,
                                   const QString& message)
{
    LogMessageHandler* const handler = logMessageHandler;
    if (!handler) {
        return;
    }
    LogLevel level = None;
    switch (type) {
    case QtDebugMsg:
        level = Debug;
        break;
    case QtWarningMsg:
        level = Warning;
        break;
    case QtCriticalMsg:
        level = Error;
        break;
    case QtFatalMsg:
        level = Critical;
        break;
    case QtInfoMsg:
        level = Information;
        break;
    default:
        return;
    }
    const QString text =
        QStringLiteral("%1 (%2:%3, %4)")
            .arg(message, QString::fromUtf8(context.file), QString::number(context.line),
                 QString::fromUtf8(context.function));
    handler->logMessage(text, level, QDateTime::currentDateTime());
}

} // namespace Corvane
