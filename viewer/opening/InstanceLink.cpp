#include <viewer/opening/InstanceLink.h>

#include <corvane/core/Application.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSettings>
#include <QWidget>

namespace Corvane::Viewer {
namespace {

// A first program that hangs does not keep the second one from opening its files itself.
constexpr int longestWait = 2000; // milliseconds

const char* const openKey = "corvane-open";

} // namespace

InstanceLink::InstanceLink(QWidget* window) : QObject(window)
{
    Application* const application = Application::instance();
    application->setActivationWindow(window);
    connect(application, &QtSingleApplication::messageReceived, this,
            [this](const QString& message) { emit received(sourcesIn(message)); });
}

bool InstanceLink::handOver(const QStringList& sources)
{
    Application* const application = Application::instance();
    application->setProperty("instanceScope", application->getSettings()->fileName());
    return application->isRunning() && application->sendMessage(messageOf(sources), longestWait);
}

QString InstanceLink::messageOf(const QStringList& sources)
{
    const QJsonObject message{{openKey, QJsonArray::fromStringList(sources)}};
    return QString::fromUtf8(QJsonDocument(message).toJson(QJsonDocument::Compact));
}

QStringList InstanceLink::sourcesIn(const QString& message)
{
    const QJsonValue sources = QJsonDocument::fromJson(message.toUtf8()).object().value(openKey);
    if (!sources.isArray()) {
        return message.isEmpty() ? QStringList() : QStringList{message};
    }
    QStringList texts;
    for (const QJsonValue& source : sources.toArray()) {
        texts << source.toString();
    }
    texts.removeAll(QString());
    return texts;
}

} // namespace Corvane::Viewer
