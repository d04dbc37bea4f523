#pragma once

#include <QByteArray>
#include <QString>
#include <QUrlQuery>

#include <utility>
#include <vector>

namespace Corvane::Server {

/// What a client asks for, decoded.
struct Request
{
    /// target as it stands in the request line.
    static Request of(const QByteArray& target);

    QString path;
    QUrlQuery query;
    QByteArray body;

    /// Null where there is none.
    QString item(const char* name) const;
};

/// What it gets.
struct Reply
{
    static Reply data(const QByteArray& body, const char* type);
    /// A line of text that says what is wrong.
    static Reply failure(int status, const QString& text);

    Reply& header(const char* name, const QByteArray& value);
    /// The value of the header; empty without it.
    QByteArray header(const char* name) const;

    int status = 200;
    QByteArray type; ///< of the body
    QByteArray body;
    std::vector<std::pair<QByteArray, QByteArray>> headers;
};

} // namespace Corvane::Server
