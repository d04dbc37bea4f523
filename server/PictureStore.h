#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <list>
#include <map>
#include <mutex>
#include <set>

namespace Corvane::Server {

/// Encoded pictures in memory, those asked for last, up to a number of bytes. A picture is made
/// once at a time: whoever wants the same waits for what the first brings. Any thread.
class PictureStore
{
public:
    /// Nobody waits longer than patience for what another makes.
    PictureStore(int mostBytes, std::chrono::milliseconds patience);

    /// The picture of the name; made by make, without a lock, where it is not there. What comes
    /// empty is not kept; whoever waited for it, or in vain, gets it empty, too.
    QByteArray get(const QByteArray& name, const std::function<QByteArray()>& make);

    int bytes() const;

private:
    struct Entry
    {
        QByteArray name;
        QByteArray picture;
    };

    QByteArray find(const QByteArray& name);
    void keep(const QByteArray& name, const QByteArray& picture);

    const int mostBytes;
    const std::chrono::milliseconds patience;
    mutable std::mutex mutex; // guards what follows
    std::condition_variable made;
    std::list<Entry> entries; // used last at the front
    std::map<QByteArray, std::list<Entry>::iterator> places;
    std::set<QByteArray> underWay;
    int keptBytes = 0;
};

} // namespace Corvane::Server
