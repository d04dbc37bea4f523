#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <optional>

namespace Corvane::Map {

/// Who asks a server.
struct ServerCredentials
{
    QString user;
    QString password;

    bool isEmpty() const { return user.isEmpty(); }
    /// The value of the header that names them; empty without a user.
    QByteArray authorization() const;
};

/// Where an image lies on a server. The texts that people and documents have are URLs of the
/// streaming schemes zwtp and zwtps, which stand for http and https, or those themselves; the path is
/// the image's, with the service before it where it is not the usual one. Credentials stand behind
/// the URL, "|user|password", or before the host; they are split off and stand in none of the texts
/// here.
struct ImageServerAddress
{
    /// Whether the text is such a URL by its looks; every HTTP URL is.
    static bool isOne(const QString& text);
    /// Nothing where the text is none.
    static std::optional<ImageServerAddress> parse(const QString& text);

    QString plain;       ///< the text without credentials
    QUrl server;         ///< http or https, host and port
    QString path;        ///< with its leading slash
    bool isSure = false; ///< nothing but an image server can be meant
    ServerCredentials credentials;

    /// Where the server describes the image's grid.
    QUrl gridUrl() const;
    /// Tells servers apart.
    QString serverName() const { return server.toString(); }
};

} // namespace Corvane::Map
