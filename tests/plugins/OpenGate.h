#pragma once

#include <gdal_priv.h>

#include <QString>

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace Corvane::Tests {

/// Holds whoever is about to open a file with GDAL whose name ends with a text. Stands before all
/// drivers of GDAL, so it is made before they are, and opens nothing itself. Any thread.
class OpenGate
{
public:
    static OpenGate& instance()
    {
        static auto* const gate = new OpenGate; // GDAL asks its driver to the end of the process
        return *gate;
    }
    /// Files of this name are held from now on, until the next call; empty for none. Who is held goes on.
    void hold(const QString& nameEnd)
    {
        const std::lock_guard<std::mutex> guard(mutex);
        heldEnd = nameEnd;
        isHolding = false;
        changed.notify_all();
    }
    /// Whether somebody is held now.
    bool holds()
    {
        const std::lock_guard<std::mutex> guard(mutex);
        return isHolding;
    }

private:
    OpenGate()
    {
        auto* const driver = new GDALDriver; // GDAL's from here on
        driver->SetDescription("OpenGate");
        driver->SetMetadataItem(GDAL_DCAP_RASTER, "YES");
        driver->pfnIdentify = [](GDALOpenInfo* info) -> int {
            instance().pass(QString::fromUtf8(info->pszFilename));
            return FALSE;
        };
        driver->pfnOpen = [](GDALOpenInfo*) -> GDALDataset* { return nullptr; };
        GetGDALDriverManager()->RegisterDriver(driver);
    }
    void pass(const QString& name)
    {
        std::unique_lock<std::mutex> guard(mutex);
        const QString end = heldEnd;
        if (end.isEmpty() || !name.endsWith(end)) {
            return;
        }
        isHolding = true;
        changed.wait_for(guard, std::chrono::minutes(2), [&] { return heldEnd != end; });
    }

    std::mutex mutex; // guards what follows
    std::condition_variable changed;
    QString heldEnd;
    bool isHolding = false;
};

} // namespace Corvane::Tests
