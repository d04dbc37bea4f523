#include <viewer/opening/FolderContents.h>

#include <viewer/maps/MapDocumentReader.h>
#include <viewer/sources/Sources.h>

#include <corvane/core/ILayerPluginInfo.h>
#include <corvane/core/PluginManager.h>

#include <QCollator>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QRegularExpression>
#include <QThreadPool>

#include <algorithm>

namespace Corvane::Viewer {
namespace {

constexpr int mostThreads = 4;
const char* const rasterClass = "Corvane::Map::GdalRasterLayer";

// Files that lie beside images and tell of them; alone they open as no image, or as a wrong one.
const QStringList companions{"aux", "hdr", "json", "msk", "ovr", "prj", "rrd", "txt", "xml"};

/// The suffixes in "Name (*.a *.b);;Other (*.c)".
QStringList suffixesOf(const QString& filter)
{
    static const QRegularExpression pattern("\\*\\.([A-Za-z0-9_.]+)");
    QStringList suffixes;
    auto match = pattern.globalMatch(filter);
    while (match.hasNext()) {
        suffixes << match.next().captured(1).toLower();
    }
    return suffixes;
}

} // namespace

FolderContents::FolderContents()
{
    for (ILayerPluginInfo* plugin : PluginManager::getLayerPluginInfoList()) {
        if (plugin->isEnabled()) {
            const QStringList read = suffixesOf(plugin->getReadFilter());
            known << read;
            suffixes << (plugin->getClassName() == rasterClass ? read : QStringList());
        }
    }
    for (const QString& companion : companions) {
        suffixes.removeAll(companion);
    }
}

bool FolderContents::isSource(const QString& source) const
{
    const bool address = isAddress(source) || !QDir::isAbsolutePath(source);
    return address || source.startsWith("/vsi") || mayBeMapDocument(source) ||
           known.contains(QFileInfo(source).suffix().toLower());
}

// Any thread.
QStringList FolderContents::sourcesIn(const QString& path) const
{
    if (!QFileInfo(path).isDir()) {
        return {path};
    }
    const QDir folder(path);
    QStringList found;
    for (const QString& name : folder.entryList(QDir::Files | QDir::Readable)) {
        if (suffixes.contains(QFileInfo(name).suffix().toLower())) {
            found << folder.absoluteFilePath(name);
        }
    }
    const QLocale locale;
    QCollator collator(locale.language() == QLocale::C ? QLocale(QLocale::English) : locale);
    collator.setNumericMode(true);
    std::sort(found.begin(), found.end(), [&collator](const QString& a, const QString& b) {
        return collator.compare(a, b) < 0;
    });
    return found.isEmpty() ? QStringList{path} : found;
}

QThreadPool& folderThreads()
{
    static QThreadPool threads;
    threads.setMaxThreadCount(mostThreads);
    return threads;
}

} // namespace Corvane::Viewer
