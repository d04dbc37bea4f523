#include <server/SearchInterface.h>

#include <server/Exchange.h>
#include <server/ImageFolder.h>

#include <QDateTime>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <vector>

namespace Corvane::Server {

namespace {

constexpr int mostResults = 500;
const char* const jsonType = "application/json; charset=utf-8";

QString formatOf(const PublishedImage& image)
{
    return QFileInfo(image.path).suffix().toUpper();
}

// Formats may be one name or several; none stands for all.
QStringList wantedFormats(const QJsonValue& formats)
{
    QStringList names;
    for (const QJsonValue& one : formats.isArray() ? formats.toArray() : QJsonArray{formats}) {
        if (one.isString()) {
            names.append(one.toString().toUpper());
        }
    }
    return names;
}

// All images are on offer, so who looks for those that are not finds nothing.
bool asksForHidden(const QJsonObject& pattern)
{
    return pattern.value(QLatin1String("wmsEnabled"))
               .toObject()
               .value(QLatin1String("value"))
               .toBool(true) == false;
}

QJsonObject entryOf(const PublishedImage& image)
{
    const QString suffix = QFileInfo(image.path).suffix();
    const int ending = suffix.isEmpty() ? 0 : suffix.size() + 1;
    return {{QStringLiteral("name"), image.path.mid(1).chopped(ending)},
            {QStringLiteral("decoderName"), suffix.toUpper()},
            {QStringLiteral("registrationDate"),
             QDateTime::fromMSecsSinceEpoch(image.modified, Qt::UTC).toString(Qt::ISODate)}};
}

} // namespace

SearchInterface::SearchInterface(ImageFolder& folder) : images(folder) {}

Reply SearchInterface::answer(const Request& request) const
{
    const QJsonDocument document = QJsonDocument::fromJson(request.body);
    if (!document.isObject()) {
        return Reply::failure(400, QStringLiteral("the search is no JSON object"));
    }
    const QJsonObject search = document.object();
    const QJsonObject pattern = search.value(QLatin1String("template")).toObject();
    const QStringList formats = wantedFormats(pattern.value(QLatin1String("decoderName")));
    const std::shared_ptr<const ImageList> list = images.list();
    std::vector<const PublishedImage*> found;
    for (const auto& image : list->images) {
        const bool fits = formats.isEmpty() || formats.contains(formatOf(*image));
        if (fits && !asksForHidden(pattern)) {
            found.push_back(image.get());
        }
    }
    std::stable_sort(found.begin(), found.end(), [](const auto* a, const auto* b) {
        return a->modified > b->modified; // the newest first
    });
    const int count = static_cast<int>(found.size());
    const int first = std::clamp(search.value(QLatin1String("start")).toInt(0), 0, count);
    const int wanted = search.value(QLatin1String("maxresults")).toInt(mostResults);
    const int last = first + std::clamp(wanted, 0, std::min(mostResults, count - first));
    QJsonArray results;
    for (int i = first; i < last; ++i) {
        results.append(entryOf(*found[static_cast<std::size_t>(i)]));
    }
    const int mostCounted = search.value(QLatin1String("maxresultcount")).toInt(count);
    const QJsonObject answer{{QStringLiteral("start"), first},
                             {QStringLiteral("resultcount"), std::min(count, mostCounted)},
                             {QStringLiteral("results"), results}};
    return Reply::data(QJsonDocument(answer).toJson(QJsonDocument::Compact), jsonType)
        .header("Cache-Control", "no-store");
}

} // namespace Corvane::Server
