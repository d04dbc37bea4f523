#include <server/ImageFolder.h>

#include <server/FolderGate.h>

#include <corvane/core/Application.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace Corvane::Server {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds shortestRest(500);
constexpr int restFactor = 20; // looking takes a twentieth of the time at most
constexpr int mostImages = 20000;
constexpr int mostDepth = 32;

// Not so with what XML cannot hold. Joiners within words are held well.
bool isPlain(const QString& name)
{
    return std::none_of(name.begin(), name.end(), [](QChar letter) {
        return letter.category() == QChar::Other_Control || letter.unicode() >= 0xfffe;
    });
}

void logLine(const QString& message, LogLevel level)
{
    Application::logMessage(message, level, QDateTime::currentDateTime());
}

} // namespace

std::shared_ptr<const PublishedImage> ImageList::find(const QString& path) const
{
    const auto exact = places.constFind(path);
    if (exact != places.constEnd()) {
        return images[*exact];
    }
    const int dot = path.lastIndexOf(QLatin1Char('.'));
    const auto same = [&path, dot](const std::shared_ptr<const PublishedImage>& image) {
        return image->path.size() == path.size() && image->path.startsWith(path.left(dot + 1)) &&
               image->path.compare(path, Qt::CaseInsensitive) == 0;
    };
    const auto found = dot < 0 ? images.end() : std::find_if(images.begin(), images.end(), same);
    return found == images.end() ? nullptr : *found;
}

QStringList ImageList::topFolders() const
{
    QStringList names;
    for (const auto& image : images) {
        const int slash = image->path.indexOf(QLatin1Char('/'), 1);
        if (slash > 0) {
            names.append(image->path.mid(1, slash - 1));
        }
    }
    names.removeDuplicates();
    return names;
}

ImageFolder::ImageFolder(std::shared_ptr<const FolderGate> folderGate)
    : gate(std::move(folderGate)),
      current(std::make_shared<ImageList>())
{
}

std::shared_ptr<const ImageList> ImageFolder::list()
{
    std::unique_lock<std::mutex> looking(lookMutex, std::try_to_lock);
    const bool isDue =
        looking.owns_lock() && !isStopping && (!mayRest.exchange(true) || Clock::now() >= nextLook);
    if (isDue) {
        const auto begin = Clock::now();
        std::shared_ptr<const ImageList> found = look();
        const auto end = Clock::now();
        nextLook = end + std::max<Clock::duration>(shortestRest, (end - begin) * restFactor);
        const std::lock_guard<std::mutex> guard(mutex);
        current = std::move(found);
    }
    const std::lock_guard<std::mutex> guard(mutex);
    return current;
}

std::shared_ptr<const PublishedImage> ImageFolder::find(const QString& path)
{
    return list()->find(path);
}

std::shared_ptr<const ImageList> ImageFolder::look()
{
    std::shared_ptr<const ImageList> before;
    {
        const std::lock_guard<std::mutex> guard(mutex);
        before = current;
    }
    auto found = std::make_shared<ImageList>();
    refusing.clear();
    walk(QFile::decodeName(gate->root()), 0, *before, *found);
    refused.swap(refusing);
    const bool wasFull = std::exchange(isFull, found->images.size() >= mostImages);
    if (isFull && !wasFull) {
        logLine(QStringLiteral("only the first %1 images are published").arg(mostImages),
                LogLevel::Warning);
    }
    return found;
}

// A link to a folder is not followed: it might lead back up.
void ImageFolder::walk(const QString& folder, int depth, const ImageList& before, ImageList& found)
{
    const auto order = QDir::Name | QDir::IgnoreCase | QDir::DirsFirst;
    const QFileInfoList entries =
        QDir(folder + QLatin1Char('/'))
            .entryInfoList(QDir::Dirs | QDir::Files | QDir::System | QDir::NoDotAndDotDot, order);
    for (const QFileInfo& entry : entries) {
        if (isStopping || found.images.size() >= mostImages) {
            return;
        }
        const QString name = folder + QLatin1Char('/') + entry.fileName();
        if (!isPlain(entry.fileName())) {
            if (entry.isDir() || looksLikeImage(name)) {
                leaveOut(name, {QString(), QStringLiteral("its name has control characters")});
            }
        } else if (!entry.isDir()) {
            if (entry.isFile() || entry.isSymLink()) { // a link that leads nowhere is no file
                take(name, before, found);
            }
        } else if (!entry.isSymLink() && depth < mostDepth) {
            walk(name, depth + 1, before, found);
        }
    }
}

void ImageFolder::take(const QString& file, const ImageList& before, ImageList& found)
{
    const QString path = pathOf(file);
    const auto place = before.places.constFind(path);
    std::shared_ptr<const PublishedImage> image =
        place == before.places.constEnd() ? nullptr : before.images[*place];
    const QString stamp = stampOf(*gate, image ? image->files : QStringList(file));
    if (image && image->stamp != stamp) {
        image = nullptr;
    }
    if (!image) {
        const Refusal known = refused.value(file);
        // what a virtual raster refers to may have come meanwhile
        const bool tryAgain = file.endsWith(QLatin1String(".vrt"), Qt::CaseInsensitive);
        if (known.stamp == stamp && !tryAgain) {
            refusing.insert(file, known);
            return;
        }
        QString reason;
        image = readImage(*gate, file, &reason);
        if (!image) {
            leaveOut(file, {stamp, reason});
            return;
        }
    }
    found.places.insert(path, found.images.size());
    found.images.append(std::move(image));
}

// The log tells a reason once.
void ImageFolder::leaveOut(const QString& file, const Refusal& refusal)
{
    if (!refusal.reason.isEmpty() && refusal.reason != refused.value(file).reason) {
        logLine(QStringLiteral("left out %1: %2").arg(pathOf(file), refusal.reason),
                LogLevel::Warning);
    }
    refusing.insert(file, refusal);
}

QString ImageFolder::pathOf(const QString& file) const
{
    return file.mid(QFile::decodeName(gate->root()).size());
}

} // namespace Corvane::Server
