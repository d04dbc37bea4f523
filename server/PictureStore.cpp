#include <server/PictureStore.h>

namespace Corvane::Server {

PictureStore::PictureStore(int limit, std::chrono::milliseconds longest)
    : mostBytes(limit),
      patience(longest)
{
}

QByteArray PictureStore::get(const QByteArray& name, const std::function<QByteArray()>& make)
{
    {
        std::unique_lock<std::mutex> guard(mutex);
        const bool waits = underWay.count(name) > 0;
        made.wait_for(guard, patience, [&] { return underWay.count(name) == 0; });
        const QByteArray known = find(name);
        if (waits || !known.isEmpty()) {
            return known; // who fails makes the others fail: they would queue up behind each other
        }
        underWay.insert(name);
    }
    const QByteArray picture = make();
    const std::lock_guard<std::mutex> guard(mutex);
    underWay.erase(name);
    if (!picture.isEmpty()) {
        keep(name, picture);
    }
    made.notify_all();
    return picture;
}

int PictureStore::bytes() const
{
    const std::lock_guard<std::mutex> guard(mutex);
    return keptBytes;
}

// Under the mutex.
QByteArray PictureStore::find(const QByteArray& name)
{
    const auto place = places.find(name);
    if (place == places.end()) {
        return QByteArray();
    }
    entries.splice(entries.begin(), entries, place->second);
    return place->second->picture;
}

// Under the mutex.
void PictureStore::keep(const QByteArray& name, const QByteArray& picture)
{
    entries.push_front({name, picture});
    places[name] = entries.begin();
    keptBytes += picture.size();
    while (keptBytes > mostBytes && !entries.empty()) {
        keptBytes -= entries.back().picture.size();
        places.erase(entries.back().name);
        entries.pop_back();
    }
}

} // namespace Corvane::Server
