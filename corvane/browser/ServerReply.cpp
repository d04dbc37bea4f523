#include <corvane/browser/ServerReply_p.h>

#include <corvane/browser/XmlReading_p.h>
#include <corvane/core/Application.h>

#include <QApplication>
#include <QCursor>
#include <QDateTime>
#include <QDebug>
#include <QMessageBox>
#include <QNetworkReply>
#include <QPointer>

#include <memory>

namespace Corvane::Gui {
WaitCursor::WaitCursor(QNetworkReply* reply) : QObject(reply)
{
    QApplication::setOverrideCursor(Qt::WaitCursor);
}

WaitCursor::~WaitCursor()
{
    QApplication::restoreOverrideCursor();
}

void WaitCursor::end(QNetworkReply* reply)
{
    delete reply->findChild<WaitCursor*>(QString(), Qt::FindDirectChildrenOnly);
}

bool namesServer(const QUrl& url)
{
    return url.isValid() && !url.host().isEmpty();
}

void readInTurns(QNetworkReply* reply, const std::function<void(const QDomDocument&)>& done)
{
    const auto reading = std::make_shared<XmlReading>(reply->readAll());
    takeTurns(
        reply, [reading] { return reading->readOn(); },
        [reading, done] { done(reading->takeDocument()); });
}

QDomElement firstElement(const QDomDocument& document, const char* name)
{
    return document.elementsByTagName(QLatin1String(name)).at(0).toElement();
}

void warn(QWidget* parent, const QString& title, const QString& text)
{
    const QPointer<QMessageBox> box =
        new QMessageBox(QMessageBox::Warning, title, text, QMessageBox::Ok, parent);
    box->setTextFormat(Qt::PlainText);
    box->exec();
    delete box;
}

QString forLog(const QUrl& url)
{
    return url.toString(QUrl::RemovePassword);
}

void logDebug(const QString& line)
{
    Application::logMessage(line, Debug, QDateTime::currentDateTime());
}

void logCacheState(const QNetworkReply& reply)
{
    qDebug() << "QNetworkReply came from cache:"
             << reply.attribute(QNetworkRequest::SourceIsFromCacheAttribute).toBool();
}

} // namespace Corvane::Gui
