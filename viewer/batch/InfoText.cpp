#include <viewer/batch/InfoText.h>

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QStringList>

namespace Corvane::Viewer {
namespace {

constexpr int indentation = 2; // characters
constexpr int digits = 12;     // as many as world coordinates are told with

QString plainText(const QJsonValue& value)
{
    switch (value.type()) {
    case QJsonValue::Bool:
        return value.toBool() ? "yes" : "no";
    case QJsonValue::Double:
        return QString::number(value.toDouble(), 'g', digits);
    case QJsonValue::String:
        return value.toString().simplified();
    default:
        return "-";
    }
}

bool isFlat(const QJsonValue& value)
{
    return !value.isObject() && !value.isArray();
}

/// A few numbers that belong together: "tlx 0, tly 10, brx 20, bry 0".
bool isShort(const QJsonObject& object)
{
    bool numbers = !object.isEmpty();
    for (const QJsonValue& value : object) {
        numbers = numbers && (value.isDouble() || value.isNull());
    }
    return numbers;
}

QString shortText(const QJsonObject& object)
{
    QStringList parts;
    for (const char* key : {"tlx", "tly", "brx", "bry", "width", "height"}) {
        if (object.contains(key)) {
            parts << QString("%1 %2").arg(key, plainText(object[key]));
        }
    }
    for (const QString& key : object.keys()) {
        if (!parts.contains(QString("%1 %2").arg(key, plainText(object[key])))) {
            parts << QString("%1 %2").arg(key, plainText(object[key]));
        }
    }
    return parts.join(", ");
}

void append(const QString& key, const QJsonValue& value, int depth, QStringList* lines);

void appendMembers(const QJsonObject& object, int depth, QStringList* lines)
{
    for (const QString& key : object.keys()) {
        append(key, object[key], depth, lines);
    }
}

void append(const QString& key, const QJsonValue& value, int depth, QStringList* lines)
{
    const QString head = QString(depth * indentation, ' ') + key + ':';
    if (value.isObject() && !isShort(value.toObject())) {
        *lines << head;
        appendMembers(value.toObject(), depth + 1, lines);
    } else if (value.isObject()) {
        *lines << head + ' ' + shortText(value.toObject());
    } else if (isFlat(value)) {
        *lines << head + ' ' + plainText(value);
    } else {
        QStringList flat;
        *lines << head;
        const int headLine = lines->size() - 1;
        for (const QJsonValue& entry : value.toArray()) {
            if (isFlat(entry)) {
                flat << plainText(entry);
            } else {
                append("-", entry, depth + 1, lines);
            }
        }
        (*lines)[headLine] += flat.isEmpty() ? QString() : ' ' + flat.join(", ");
    }
}

} // namespace

QString infoText(const QJsonArray& files)
{
    QStringList lines;
    for (const QJsonValue& value : files) {
        QJsonObject file = value.toObject();
        lines << file.take("file").toString();
        appendMembers(file, 1, &lines);
    }
    return lines.isEmpty() ? QString() : lines.join('\n') + '\n';
}

} // namespace Corvane::Viewer
