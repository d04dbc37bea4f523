#pragma once

#include <QSize>
#include <QString>

#include <atomic>
#include <memory>

namespace Corvane::Map {

struct RasterFacts;

/// What overviews to build, and where they may lie.
struct OverviewOrder
{
    /// For a file as it was opened. settings: whether overviews may lie beside it, and how large the
    /// cache folder may get. GUI thread.
    static OverviewOrder of(const QString& file, const RasterFacts& facts);

    QString file;
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
};

/// Reads the file once and writes reduced copies of it, each half the size of the one before: beside
/// the file as FILE.ovr, or, where nothing can be written there, into OverviewStore. They come under
/// their name all at once, when they are whole; what a program that died left behind goes. Null with
/// the reason in error; where abandoned is true it stops soon and leaves nothing. Uses one thread, a
/// few megabytes and the block cache. Takes minutes.
std::shared_ptr<BuiltOverviews> buildOverviews(const OverviewOrder& order, OverviewMeter& meter,
                                               const std::atomic<bool>& abandoned, QString* error);

} // namespace Corvane::Map
