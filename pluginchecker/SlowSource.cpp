#include <pluginchecker/SlowSource.h>

#include <pluginchecker/BrokenLink.h>
#include <pluginchecker/LayerUnderTest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThreadPool>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Corvane::PluginChecker {

namespace {

class Fifo final : public SlowSource
{
public:
    explicit Fifo(const QString& name) : path(name)
    {
        mkfifo(QFile::encodeName(path).constData(), S_IRUSR | S_IWUSR);
    }
    QString name() const override { return path; }
    // A writer that comes and goes ends one open and all reads of that moment.
    void end() override
    {
        waitUntil([this] {
            const int writer = open(QFile::encodeName(path).constData(), O_RDWR | O_NONBLOCK);
            const bool idle = QThreadPool::globalInstance()->waitForDone(1);
            if (writer >= 0) {
                close(writer);
            }
            return idle;
        });
        drainPool();
    }

private:
    QString path;
};

class SilentServer final : public SlowSource
{
public:
    explicit SilentServer(const QString& source) : link(source, BrokenLink::Silent) {}
    QString name() const override { return link.source(); }
    void end() override
    {
        link.close();
        drainPool();
    }

private:
    BrokenLink link;
};

} // namespace

std::unique_ptr<SlowSource> SlowSource::make(const QString& source, const QString& folder)
{
    if (QFileInfo(source).isFile()) {
        return std::make_unique<Fifo>(QDir(folder).filePath(QFileInfo(source).fileName()));
    }
    if (BrokenLink::fits(source)) {
        return std::make_unique<SilentServer>(source);
    }
    return nullptr;
}

} // namespace Corvane::PluginChecker
