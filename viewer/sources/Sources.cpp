#include <viewer/sources/Sources.h>

#include <QDir>
#include <QFileInfo>
#include <QMimeData>
#include <QRegularExpression>
#include <QUrl>

namespace Corvane::Viewer {

QString sourceOf(const QUrl& url)
{
    if (url.isLocalFile()) {
        return url.toLocalFile();
    }
    // as a server is asked; the braces are those of tile addresses
    QString address = url.toString(QUrl::EncodeSpaces | QUrl::EncodeUnicode);
    return address.replace("%7B", "{").replace("%7D", "}");
}

QString sourceOf(const QString& text)
{
    const QString trimmed = text.trimmed();
    const QUrl url(trimmed);
    return url.isLocalFile() ? url.toLocalFile() : trimmed;
}

QStringList sourcesOf(const QMimeData* data)
{
    QStringList sources;
    for (const QUrl& url : data->urls()) {
        sources << sourceOf(url);
    }
    if (sources.isEmpty()) {
        const QStringList lines = data->text().split('\n', Qt::SkipEmptyParts);
        for (const QString& line : lines) {
            const QString source = sourceOf(line);
            if (!isAddress(source) && !QDir::isAbsolutePath(source)) {
                return {}; // any other text, of which a line may begin like an address
            }
            sources << source;
        }
    }
    return sources;
}

QString absoluteSource(const QString& text)
{
    const QString source = sourceOf(text);
    if (isAddress(source) || QDir::isAbsolutePath(source) || source.isEmpty()) {
        return source;
    }
    const QFileInfo file(source);
    const bool plain = !source.contains(':');
    return plain || file.exists() ? file.absoluteFilePath() : source;
}

bool isAddress(const QString& source)
{
    static const QRegularExpression shape("^[a-zA-Z][a-zA-Z0-9+.-]*://.");
    return shape.match(source).hasMatch();
}

} // namespace Corvane::Viewer
