#include <viewer/maps/MapDocumentWriter.h>

#include <QDomDocument>
#include <QDomElement>
#include <QSaveFile>
#include <QXmlStreamWriter>

#include <algorithm>
#include <cerrno>
#include <vector>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace Corvane::Viewer {
namespace {

constexpr int indentation = 1;

bool isAllowed(QChar character)
{
    const ushort code = character.unicode();
    return code >= 0x20 ? code < 0xFFFE : code == '\t' || code == '\n' || code == '\r';
}

/// The text without the characters that no XML reader takes, half surrogates among them.
QString carriable(const QString& text)
{
    QString result;
    result.reserve(text.size());
    for (int i = 0; i < text.size(); ++i) {
        const QChar character = text.at(i);
        if (character.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate()) {
            result += character;
            result += text.at(++i);
        } else if (!character.isSurrogate() && isAllowed(character)) {
            result += character;
        }
    }
    return result;
}

void writeAttributes(QXmlStreamWriter& writer, const QDomElement& element)
{
    const QDomNamedNodeMap map = element.attributes();
    std::vector<QDomAttr> attributes;
    for (int i = 0; i < map.count(); ++i) {
        attributes.push_back(map.item(i).toAttr());
    }
    std::sort(attributes.begin(), attributes.end(),
              [](const QDomAttr& a, const QDomAttr& b) { return a.name() < b.name(); });
    for (const QDomAttr& attribute : attributes) {
        writer.writeAttribute(attribute.name(), carriable(attribute.value()));
    }
}

void writeElement(QXmlStreamWriter& writer, const QDomElement& element)
{
    writer.writeStartElement(element.tagName());
    writeAttributes(writer, element);
    for (QDomNode child = element.firstChild(); !child.isNull(); child = child.nextSibling()) {
        if (child.isElement()) {
            writeElement(writer, child.toElement());
        } else if (child.isCharacterData() && !child.isComment()) {
            const QString text = carriable(child.toCharacterData().data());
            if (!text.isEmpty()) { // else the element would be written in two parts
                writer.writeCharacters(text);
            }
        }
    }
    writer.writeEndElement();
}

void setUp(QXmlStreamWriter& writer)
{
    writer.setAutoFormatting(true);
    writer.setAutoFormattingIndent(indentation);
}

/// Without a buffer, so that the reason of a failure is known.
bool writeAll(QSaveFile& file, const QByteArray& text)
{
    for (qint64 written = 0; written < text.size();) {
        const qint64 count = file.write(text.constData() + written, text.size() - written);
        if (count <= 0) {
            return false;
        }
        written += count;
    }
    return true;
}

/// Puts the bytes on the disk: renaming alone may reach it before them. A file system that knows
/// of no such call is taken as it is.
bool flushToDisk(QSaveFile& file, QString* reason)
{
#ifdef Q_OS_UNIX
    if (::fsync(file.handle()) != 0 && errno != EINVAL && errno != ENOSYS) {
        *reason = qt_error_string(errno);
        return false;
    }
#endif
    return true;
}

} // namespace

QByteArray mapDocumentText(const QDomDocument& document)
{
    QByteArray text;
    QXmlStreamWriter writer(&text);
    setUp(writer);
    writer.writeStartDocument();
    if (!document.doctype().isNull()) {
        writer.writeDTD(QString("<!DOCTYPE %1>").arg(document.doctype().name()));
    }
    writeElement(writer, document.documentElement());
    writer.writeEndDocument();
    return text;
}

QByteArray mapElementText(const QDomElement& element)
{
    QByteArray text;
    QXmlStreamWriter writer(&text);
    setUp(writer);
    writeElement(writer, element);
    return text;
}

// Any thread.
bool writeMapDocument(const QString& fileName, const QByteArray& text, QString* reason)
{
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) || !writeAll(file, text)) {
        *reason = file.errorString();
        return false;
    }
    if (!flushToDisk(file, reason)) {
        return false;
    }
    if (!file.commit()) {
        *reason = file.errorString();
        return false;
    }
    return true;
}

} // namespace Corvane::Viewer
