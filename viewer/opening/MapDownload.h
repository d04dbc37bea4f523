#pragma once

#include <QNetworkAccessManager>
#include <QObject>
#include <QTemporaryDir>
#include <QUrl>

class QNetworkReply;

namespace Corvane::Viewer {

/// Whether the source is the address of a map document on a web server, by its name.
bool isMapAddress(const QString& source);

/// Fetches a map document from a web server. Sources in it that are relative belong to the server.
/// GUI thread only.
class MapDownload : public QObject
{
    Q_OBJECT
public:
    MapDownload(const QString& address, QObject* parent);

    void start();
    /// What the map is called.
    QString getName() const;

signals:
    /// The map is in this file, which lives as long as the download.
    void fetched(const QString& fileName);
    void failed(const QString& reason);

private:
    void onFinished();

    const QUrl url;
    QNetworkAccessManager network;
    QNetworkReply* reply = nullptr; // the network's
    QTemporaryDir folder;
};

} // namespace Corvane::Viewer
