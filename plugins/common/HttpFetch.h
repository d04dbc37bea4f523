#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <vector>

namespace Corvane::Map {

/// What to get from a server, and on what terms.
struct FetchOrder
{
    QByteArray url; // http or https, encoded
    QByteArray userAgent;
    std::vector<QByteArray> headers; // "Name: value"
    int deadline = 20000;            // milliseconds for all of it
};

/// What came of it.
struct FetchResult
{
    int status = 0;  // of the last answer; 0 without a whole one
    QByteArray head; // the header lines, as they came
    QByteArray body;
    QString failure;         // why there is no answer; empty where there is one
    bool wasDropped = false; // nobody wanted it any more

    /// All values of the header, joined by ", "; null where there is none. The name in any case.
    QByteArray header(const char* name) const;
    void addHeader(const QByteArray& name, const QByteArray& value);
};

/// "Corvane/1.0", with the suffix behind it where there is one.
QByteArray userAgentWith(const QString& suffix);

/// Gets a URL; the connection stays open for the next one. Redirects are followed a few times, and a
/// body has at most 64 MB, a head 256 KB. Blocks until the answer is whole, the deadline is over, or isUnwanted,
/// which is asked every 25 milliseconds, says so. On a pool thread.
FetchResult fetch(const FetchOrder& order, const std::function<bool()>& isUnwanted);

} // namespace Corvane::Map
