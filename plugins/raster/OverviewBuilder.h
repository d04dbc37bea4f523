#pragma once

#include <plugins/raster/OverviewFile.h>
#include <plugins/raster/OverviewStore.h>

#include <QSize>
#include <QString>

#include <atomic>
#include <functional>
#include <memory>

namespace Corvane::Map {

struct RasterFacts;

/// What overviews to build, and where they may lie.
struct OverviewOrder
{
    /// For an image as it was opened. settings: whether overviews may lie beside it, and how large the
    /// cache folder may get. GUI thread.
    static OverviewOrder of(const OverviewOwner& owner, const RasterFacts& facts);

    OverviewOwner owner;
    QSize size;
    qint64 fullBytes = 0; ///< of its pixels
    bool nearest = false; ///< for values that stand for something, which have no mean
    bool jpeg = false;    ///< compressed like the image itself
    bool integers = true; ///< of 8 or 16 bits, which differ little from their neighbours
    bool mayLieBeside = true;
    qint64 mostCacheBytes = 0;
};

/// What came of it.
struct BuiltOverviews
{
    QString file; ///< that holds them
};

/// How far it is, from another thread.
struct OverviewMeter
{
    std::atomic<int> percent{0};
    /// Called on the background thread whenever another level is whole, with a file of all levels so
    /// far. It gets more, and those that are in it stay as they are. May be empty.
    std::function<void(const OverviewFile&)> levelCame;
};

/// Reads the file once and writes reduced copies of it, each half the size of the one before and made
/// of it: beside the file as FILE.ovr, or, where nothing can be written there, into OverviewStore.
/// They come under their name all at once, when they are whole; what a program that died left behind
/// goes. Null with the reason in error, also where the file is not the same any more; where abandoned
/// is true it stops soon and leaves nothing. Uses one thread, a few megabytes and the block cache.
/// Takes minutes.
std::shared_ptr<BuiltOverviews> buildOverviews(const OverviewOrder& order, OverviewMeter& meter,
                                               const std::atomic<bool>& abandoned, QString* error);

} // namespace Corvane::Map
