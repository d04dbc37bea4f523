#pragma once

#include <QString>

namespace Corvane::Map {

/// A data source that names an image server: a URL, and behind it "|user|password" where the server
/// asks who it is. Any thread.
struct ServerSource
{
    /// Takes the text apart at the first two bars: a password may hold more of them.
    static ServerSource split(const QString& text);
    /// Whether only an image server can be meant, by a streaming scheme or by credentials behind an
    /// HTTP URL. Other plugins leave such a text alone, and out of the log.
    static bool isForImageServer(const QString& text);

    /// Whether the text is an HTTP URL with places for tile numbers, "{z}": no server has an answer
    /// for it as it stands, and one that answers nothing would keep whoever asks waiting.
    static bool isForTiles(const QString& text);

    QString url;
    QString user; ///< empty without credentials
    QString password;
};

} // namespace Corvane::Map
