#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <optional>

namespace Corvane::Map {

struct FetchResult;

/// What a server allows to be done with its answer. Times in milliseconds since 1970.
struct Freshness
{
    bool mayStore = false;
    qint64 expires = 0; // from then on the server is asked whether the answer still holds
};

/// What the headers of an answer say that came at now: Cache-Control, Expires, Age, Date, Pragma.
/// An answer that says nothing is stale at once, and not stored where nothing could tell later
/// whether it still holds.
Freshness freshnessOf(const FetchResult& result, qint64 now);

/// The time that a header names; nothing where it names none.
std::optional<qint64> httpTime(const QByteArray& text);

/// When a server that sent Retry-After, in seconds or as a date, wants to be asked again; 0 where
/// it does not say. A day from now at most.
qint64 retryTimeOf(const FetchResult& result, qint64 now);

} // namespace Corvane::Map
