#pragma once

#include <QByteArray>
#include <QDomDocument>
#include <QObject>
#include <QString>
#include <QUrl>

#include <functional>

class QNetworkReply;
class QWidget;

namespace Corvane::Gui {

constexpr int newServer = 13; // the first build with named services and the new image interface
constexpr int standardPort = 80;

/// The wait cursor, for as long as it lives. It belongs to the reply that is waited for, so one that
/// goes unanswered with its dialog takes the cursor along.
class WaitCursor : public QObject
{
    Q_OBJECT
public:
    explicit WaitCursor(QNetworkReply* reply);
    ~WaitCursor() override;

    static void end(QNetworkReply* reply); ///< does nothing where there is none
};

/// Whether there is a server to ask. QUrl also takes a URL without a host for valid.
bool namesServer(const QUrl& url);

/// The reply's document, read between the other events; done is not called once the reply has gone.
void readInTurns(QNetworkReply* reply, const std::function<void(const QDomDocument&)>& done);

/// The first element of a name at any depth, or null.
QDomElement firstElement(const QDomDocument& document, const char* name);

/// A box with an Ok button, its text never taken for markup. parent may go while it is open.
void warn(QWidget* parent, const QString& title, const QString& text);

/// A URL for the log, without the password that a host name may have been typed with.
QString forLog(const QUrl& url);

void logDebug(const QString& line);
void logCacheState(const QNetworkReply& reply);

} // namespace Corvane::Gui
