#pragma once

#include <QReadLocker>
#include <QReadWriteLock>
#include <QWriteLocker>

namespace Corvane::Map {

/// The tile engine's one shape of locking: the lock is taken and given back at once, before the
/// access, so a caller meets whoever holds it and waits for no more. What keeps the containers
/// whole is TileHash. Any thread.
inline void rendezvousForReading(QReadWriteLock& lock)
{
    const QReadLocker locker(&lock);
}

inline void rendezvousForWriting(QReadWriteLock& lock)
{
    const QWriteLocker locker(&lock);
}

} // namespace Corvane::Map
