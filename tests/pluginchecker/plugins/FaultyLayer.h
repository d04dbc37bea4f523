#pragma once

#include <corvane/core/Application.h>
#include <corvane/map/GeoPainter.h>
#include <corvane/map/IRendererClient.h>
#include <corvane/map/Layer.h>

#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QIcon>
#include <QSemaphore>
#include <QThreadPool>
#include <QTimer>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <thread>

/// What a plugin does wrong. The build makes one plugin for each, with CORVANE_FAULT.
enum class Fault
{
    None,
    WrongClassName,
    OddFilter,
    CrashInDeletion,
    CrashAtExit,
    EndOfProcess,
    HangInSetView,
    EventLoopInSetView,
    WaitForPool,
    LostProperty,
    LateCall,
    LeftThread,
    LeftTimer,
    LeftOpacity,
    OtherPictureEachTime,
    NotComplete,
    OpensAnything,
    SilentRefusal
};
constexpr Fault fault = Fault::CORVANE_FAULT;

/// A layer that shows a plain colour once a task of the pool has made it. Its source is a file that
/// begins with "picture".
class FaultyLayer : public Corvane::Map::Layer
{
    Q_OBJECT
    Q_PROPERTY(bool Progressive READ isProgressive WRITE setProgressive)
    Q_PROPERTY(QString Shade READ getShade WRITE setShade)
public:
    FaultyLayer() : Layer(nullptr) {}
    ~FaultyLayer() override
    {
        if (fault == Fault::CrashInDeletion && *inFlight > 0) {
            std::abort();
        }
        if (fault == Fault::LeftThread && valid) {
            std::thread([] { QSemaphore().acquire(); }).detach();
        }
        if (fault == Fault::LeftTimer && valid) {
            auto* const timer = new QTimer(QCoreApplication::instance());
            timer->start(20);
        }
    }

    QString getDataSource() override { return source; }
    bool setDataSource(QString newSource) override
    {
        source = newSource;
        QFile file(source);
        // a FIFO would keep the window waiting
        valid = QFileInfo(source).isFile() && file.open(QIODevice::ReadOnly) &&
                file.read(7) == "picture";
        valid = valid || (fault == Fault::OpensAnything && file.isOpen());
        error = valid ? QString() : QStringLiteral("no picture");
        if (!valid && fault != Fault::SilentRefusal) {
            Corvane::Application::logMessage("cannot open " + source, Corvane::Warning,
                                             QDateTime::currentDateTime());
        }
        return valid;
    }
    QIcon getIcon() override { return QIcon(); }
    bool isVisible() override { return visible; }
    void setVisible(bool v) override { visible = v; }
    QString getFormat() override { return QStringLiteral("Plain"); }
    QString getCoordSysName() override { return QString(); }
    void beginUpdate(bool) override {}
    void endUpdate() override {}
    QRectF getBounds() override { return QRectF(0.0, 100.0, 100.0, -100.0); }
    bool isValid() override { return valid; }
    QString getLastError() override { return error; }
    QString getProtocol() override { return QStringLiteral("file"); }
    qint8 getPercentComplete() override
    {
        return *inFlight > 0 || (fault == Fault::NotComplete && !progressive) ? 0 : 100;
    }
    void setView(int, int, double, double, double, double) override
    {
        if (fault == Fault::EventLoopInSetView) {
            QCoreApplication::processEvents();
        }
        while (fault == Fault::HangInSetView) {
            std::this_thread::yield();
        }
        if (!valid) {
            return;
        }
        ++*inFlight;
        QThreadPool::globalInstance()->start(
            QRunnable::create([count = inFlight, client = rendererClient] {
                const bool late = fault == Fault::LateCall;
                const bool slow = late || fault == Fault::CrashInDeletion;
                std::this_thread::sleep_for(std::chrono::milliseconds(slow ? 20 : 0));
                if (late && client) {
                    client->onRendererUpdate(0.0, 100.0, 100.0, 0.0);
                }
                --*count;
            }));
        while ((!progressive || fault == Fault::WaitForPool) && *inFlight > 0) {
            std::this_thread::yield();
        }
    }
    void paint(Corvane::GeoPainter& painter, QRectF*, QRect* device) override
    {
        if (fault == Fault::EndOfProcess && valid) {
            std::_Exit(0);
        }
        static int count = 0;
        const bool odd = fault == Fault::OtherPictureEachTime && ++count % 2 == 1;
        painter.setOpacity(fault == Fault::LeftOpacity ? 0.5 : 1.0);
        painter.fillRect(*device, odd ? Qt::red : Qt::blue);
    }
    bool readXML(QDomNode& node, QDir& folder, QString* message) override
    {
        const bool read = Layer::readXML(node, folder, message);
        if (fault == Fault::LostProperty) {
            shade = QStringLiteral("plain");
        }
        return read;
    }

    bool isProgressive() const { return progressive; }
    void setProgressive(bool on) { progressive = on; }
    QString getShade() const { return shade; }
    void setShade(const QString& newShade) { shade = newShade; }

private:
    std::shared_ptr<std::atomic<int>> inFlight = std::make_shared<std::atomic<int>>(0);
    QString source;
    QString error;
    QString shade = QStringLiteral("plain");
    bool valid = false;
    bool visible = true;
    bool progressive = true;
};
