#include <plugins/common/ServerSource.h>

namespace Corvane::Map {

ServerSource ServerSource::split(const QString& text)
{
    const QLatin1Char bar('|');
    const int first = text.indexOf(bar);
    const int second = first < 0 ? -1 : text.indexOf(bar, first + 1);
    if (second < 0) {
        return {text, QString(), QString()};
    }
    return {text.left(first), text.mid(first + 1, second - first - 1), text.mid(second + 1)};
}

namespace {

QString schemeOf(const QString& text)
{
    return text.section(QLatin1String("://"), 0, 0).toLower();
}

bool isHttp(const QString& scheme)
{
    return scheme == QLatin1String("http") || scheme == QLatin1String("https");
}

} // namespace

bool ServerSource::isForTiles(const QString& text)
{
    return isHttp(schemeOf(text)) && text.contains(QLatin1Char('{'));
}

bool ServerSource::isForImageServer(const QString& text)
{
    const QString scheme = schemeOf(text);
    if (scheme == QLatin1String("zwtp") || scheme == QLatin1String("zwtps")) {
        return true;
    }
    return isHttp(scheme) && split(text).url != text;
}

} // namespace Corvane::Map
