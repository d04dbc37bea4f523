#pragma once

#include <QHash>
#include <QSet>
#include <QString>

#include <condition_variable>
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
    using Entry = std::pair<QString, T*>; ///< a key and its value

    TileHash() = default;
    TileHash(const TileHash&) = delete;
    TileHash& operator=(const TileHash&) = delete;
    /// Nobody uses the hash any more; sees what the last user did.
    ~TileHash() { synchronize(); }

    /// Inserts unless the key is there; whether it was inserted. The value may be null.
    bool insertIfAbsent(const QString& key, T* value)
    {
        const std::lock_guard<std::mutex> guard(mutex); // guards entries
        if (entries.contains(key)) {
            return false;
        }
        entries.insert(key, value);
        return true;
    }

    /// Whether the key is there, with whatever value.
    bool contains(const QString& key) const
    {
        const std::lock_guard<std::mutex> guard(mutex); // guards entries
        return entries.contains(key);
    }

    /// The value, or null: a null entry cannot be told from a missing one.
    T* find(const QString& key) const
    {
        const std::lock_guard<std::mutex> guard(mutex); // guards entries
        return entries.value(key, nullptr);
    }

    /// Removes the entry if it holds this very value; whether it did. While takeEach is calling
    /// for the value, waits for that call: afterwards nobody reaches the value from here.
    bool remove(const QString& key, T* value)
    {
        std::unique_lock<std::mutex> guard(mutex); // guards entries and inCall
        callEnded.wait(guard, [this, value] { return !inCall.contains(value); });
        const auto entry = entries.find(key);
        if (entry == entries.end() || entry.value() != value) {
            return false;
        }
        entries.erase(entry);
        return true;
    }

    /// Empties the hash and hands out what it held.
    std::vector<Entry> takeAll()
    {
        QHash<QString, T*> taken;
        {
            const std::lock_guard<std::mutex> guard(mutex); // guards entries
            taken.swap(entries);
        }
        return toVector(taken);
    }

    /// Empties the hash and calls function for each value that it held, outside the mutex.
    /// A value stays safe from remove until function has returned for it.
    template <typename Function>
    void takeEach(Function function)
    {
        QHash<QString, T*> taken;
        {
            const std::lock_guard<std::mutex> guard(mutex); // guards entries and inCall
            taken.swap(entries);
            for (T* const value : qAsConst(taken)) {
                inCall.insert(value);
            }
        }
        for (T* const value : qAsConst(taken)) {
            function(value);
            endCall(value);
        }
    }

    /// What the hash holds at this moment.
    std::vector<Entry> snapshot() const
    {
        // Listed under the mutex: a copy that shares its data with entries would not order its
        // reads before the next insertion.
        const std::lock_guard<std::mutex> guard(mutex); // guards entries
        return toVector(entries);
    }

    /// Passes through the mutex: from here on this thread sees what the others wrote before
    /// their operations on the hash so far.
    void synchronize() const { const std::lock_guard<std::mutex> guard(mutex); }

    /// Makes room for so many entries.
    void reserve(int size)
    {
        const std::lock_guard<std::mutex> guard(mutex); // guards entries
        entries.reserve(size);
    }

private:
    void endCall(T* value)
    {
        const std::lock_guard<std::mutex> guard(mutex); // guards inCall
        inCall.remove(value);
        callEnded.notify_all();
    }

    static std::vector<Entry> toVector(const QHash<QString, T*>& hash)
    {
        std::vector<Entry> result;
        result.reserve(static_cast<std::size_t>(hash.size()));
        for (auto entry = hash.begin(); entry != hash.end(); ++entry) {
            result.emplace_back(entry.key(), entry.value());
        }
        return result;
    }

    mutable std::mutex mutex;
    std::condition_variable callEnded;
    QHash<QString, T*> entries;
    QSet<T*> inCall; // taken values that takeEach has yet to call for
};

} // namespace Corvane::Map
