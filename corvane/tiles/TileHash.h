#pragma once

#include <QHash>
#include <QString>

#include <mutex>
#include <utility>
#include <vector>

namespace Corvane::Map {

/// Pointers by tile key. Each single operation is atomic, so pool threads and the painting thread
/// never corrupt it; nothing foreign runs under its mutex. It owns nothing. Any thread.
template <typename T>
class TileHash
{
public:
    /// Inserts unless the key is there; whether it was inserted.
    bool insertIfAbsent(const QString& key, T* value)
    {
        const std::lock_guard<std::mutex> guard(mutex); // guards entries
        if (entries.contains(key)) {
            return false;
        }
        entries.insert(key, value);
        return true;
    }

    /// The value, or null: a null entry cannot be told from a missing one.
    T* find(const QString& key) const
    {
        const std::lock_guard<std::mutex> guard(mutex); // guards entries
        return entries.value(key, nullptr);
    }

    /// Removes the entry and hands out its value, null where there was none.
    T* take(const QString& key)
    {
        const std::lock_guard<std::mutex> guard(mutex); // guards entries
        return entries.take(key);
    }

    /// Empties the hash and hands out what it held.
    std::vector<std::pair<QString, T*>> takeAll()
    {
        QHash<QString, T*> taken;
        {
            const std::lock_guard<std::mutex> guard(mutex); // guards entries
            taken.swap(entries);
        }
        return toVector(taken);
    }

    /// What the hash holds at this moment.
    std::vector<std::pair<QString, T*>> snapshot() const
    {
        QHash<QString, T*> copied;
        {
            const std::lock_guard<std::mutex> guard(mutex); // guards entries
            copied = entries;
        }
        return toVector(copied);
    }

    void reserve(int size)
    {
        const std::lock_guard<std::mutex> guard(mutex); // guards entries
        entries.reserve(size);
    }

private:
    static std::vector<std::pair<QString, T*>> toVector(const QHash<QString, T*>& hash)
    {
        std::vector<std::pair<QString, T*>> result;
        result.reserve(static_cast<std::size_t>(hash.size()));
        for (auto entry = hash.begin(); entry != hash.end(); ++entry) {
            result.emplace_back(entry.key(), entry.value());
        }
        return result;
    }

    mutable std::mutex mutex;
    QHash<QString, T*> entries;
};

} // namespace Corvane::Map
