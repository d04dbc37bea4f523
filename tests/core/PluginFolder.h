#pragma once

#include <corvane/core/Application.h>
#include <corvane/core/LogMessageHandler.h>

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QPluginLoader>
#include <QStringList>
#include <QVariant>

#if defined(Q_OS_WIN)
#define PLUGIN_SUFFIX ".dll"
#elif defined(Q_OS_MACOS)
#define PLUGIN_SUFFIX ".dylib"
#else
#define PLUGIN_SUFFIX ".so"
#endif

/// The folder "tvviewerplugins" beside the test program, empty at first.
class PluginFolder
{
public:
    PluginFolder()
    {
        directory.removeRecursively();
        directory.mkpath(".");
    }

    /// A plugin that was built for the tests.
    bool add(const QString& name) { return addAs(name, name); }
    /// The same under a name of its own: the manager takes it for another plugin.
    bool addAs(const QString& name, const QString& fileName)
    {
        return QFile::copy(builtPath(name), path(fileName + PLUGIN_SUFFIX));
    }
    bool addText(const QString& fileName)
    {
        QFile file(path(fileName));
        return file.open(QIODevice::WriteOnly) && file.write("no plugin\n") > 0;
    }
    bool addFolder(const QString& name) { return directory.mkdir(name); }

    QString path(const QString& fileName) const { return directory.absoluteFilePath(fileName); }
    /// The names without the suffix, in the order in which the file system gives them.
    QStringList names() const
    {
        QStringList result;
        const QStringList files =
            QDir(directory.path()).entryList({"*" PLUGIN_SUFFIX}, QDir::Files, QDir::Unsorted);
        for (const QString& file : files) {
            result << file.chopped(int(qstrlen(PLUGIN_SUFFIX)));
        }
        return result;
    }
    QString absolutePath() const { return directory.absolutePath(); }

private:
    static QString builtPath(const QString& name)
    {
        return QStringLiteral(TEST_PLUGIN_DIR "/") + name + PLUGIN_SUFFIX;
    }

    QDir directory{QCoreApplication::applicationDirPath() + "/tvviewerplugins"};
};

/// What the plugins have noted since the last call.
inline QStringList takeNotes()
{
    const QStringList notes = qApp->property("pluginNotes").toStringList();
    qApp->setProperty("pluginNotes", QStringList());
    return notes;
}

/// Takes "level message" lines while it lives.
class LineLog final : public Corvane::LogMessageHandler
{
public:
    LineLog() { Corvane::Application::installLogMessageHandler(this); }
    ~LineLog() { Corvane::Application::installLogMessageHandler(nullptr); }

    void logMessage(const QString& message, Corvane::LogLevel level, const QDateTime& time) override
    {
        lines << QStringLiteral("%1 %2").arg(QString::number(level), message);
        times << time;
    }
    void setLogLevel(Corvane::LogLevel) override {}
    Corvane::LogLevel getLogLevel() override { return Corvane::Debug; }

    QStringList lines;
    QList<QDateTime> times;
};
