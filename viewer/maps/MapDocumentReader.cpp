#include <viewer/maps/MapDocumentReader.h>

#include <QCoreApplication>
#include <QDir>
#include <QDomDocument>
#include <QDomElement>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QUrl>
#include <QXmlStreamReader>

#include <cctype>

namespace Corvane::Viewer {
namespace {

constexpr qint64 largestFile = 32 * 1024 * 1024; // bytes; a layer takes about 700
constexpr int deepestLevel = 100;
constexpr int mostElements = 1000000;
constexpr int mostAttributes = 1000; // of one element: the reader compares each with all others

bool isSpace(char byte)
{
    return std::isspace(static_cast<unsigned char>(byte)) != 0;
}

/// Whether a tag has more quoted values than an element may have attributes.
bool hasTooManyAttributes(const QByteArray& text)
{
    int count = 0;
    char quote = '\0'; // that of the value we are in
    bool afterEqualsSign = false;
    for (const char byte : text) {
        if (byte == '<') { // never inside a value
            count = 0;
            quote = '\0';
            afterEqualsSign = false;
        } else if (quote != '\0') {
            quote = byte == quote ? '\0' : quote;
        } else if (byte == '=') {
            afterEqualsSign = true;
        } else if (afterEqualsSign && (byte == '"' || byte == '\'')) {
            if (++count > mostAttributes) {
                return true;
            }
            quote = byte;
            afterEqualsSign = false;
        } else if (byte != '\0' && !isSpace(byte)) { // a text of two bytes each has zeros in it
            afterEqualsSign = false;
        }
    }
    return false;
}

/// Builds the tree while it reads, and stops where the text asks for too much.
class TreeBuilder
{
public:
    TreeBuilder(const QByteArray& text, QDomDocument* built) : reader(text), document(built)
    {
        reader.setNamespaceProcessing(false);
    }

    /// Empty once the whole text is in the document.
    QString build()
    {
        QDomNode parent = *document;
        while (!reader.atEnd() && refusal.isEmpty()) {
            take(reader.readNext(), &parent);
        }
        if (refusal.isEmpty() && reader.hasError()) {
            refusal = QCoreApplication::translate("MapDocumentReader", "line %1: %2")
                          .arg(reader.lineNumber())
                          .arg(reader.errorString());
        }
        return refusal;
    }

private:
    void take(QXmlStreamReader::TokenType token, QDomNode* parent)
    {
        switch (token) {
        case QXmlStreamReader::DTD:
            if (!reader.entityDeclarations().isEmpty()) {
                refusal = QCoreApplication::translate("MapDocumentReader", "it declares entities");
            }
            break;
        case QXmlStreamReader::StartElement:
            startElement(parent);
            break;
        case QXmlStreamReader::EndElement:
            --depth;
            *parent = parent->parentNode();
            break;
        case QXmlStreamReader::Characters:
            addText(parent);
            break;
        default:
            break;
        }
    }

    void startElement(QDomNode* parent)
    {
        if (++depth > deepestLevel) {
            refusal = QCoreApplication::translate("MapDocumentReader",
                                                  "its elements are nested too deeply");
        } else if (++elements > mostElements) {
            refusal = QCoreApplication::translate("MapDocumentReader", "it has too many elements");
        } else {
            QDomElement element = document->createElement(reader.qualifiedName().toString());
            for (const QXmlStreamAttribute& attribute : reader.attributes()) {
                element.setAttribute(attribute.qualifiedName().toString(),
                                     attribute.value().toString());
            }
            *parent = parent->appendChild(element);
        }
    }

    /// Space between elements is layout; space in a text is text.
    void addText(QDomNode* parent)
    {
        const bool layout = reader.isWhitespace() && !reader.isCDATA();
        if (parent->isElement() && (!layout || parent->lastChild().isText())) {
            parent->appendChild(document->createTextNode(reader.text().toString()));
        }
    }

    QXmlStreamReader reader;
    QDomDocument* document; // not owned
    QString refusal;
    int depth = 0;
    int elements = 0;
};

/// The source as a layer of a document in the folder finds it. One that is missing gets the name that
/// it would have; what only a plugin understands stays.
QString lookedUp(const QString& source, const QDir& folder)
{
    static const QRegularExpression address("^[A-Za-z][A-Za-z0-9+.-]*://");
    static const QRegularExpression forPlugins("^(<|[A-Za-z0-9_]{2,}:)");
    if (source.isEmpty() || QDir::isAbsolutePath(source) || address.match(source).hasMatch()) {
        return source;
    }
    const QString found = QFileInfo(folder, source).canonicalFilePath();
    if (!found.isEmpty() || forPlugins.match(source).hasMatch()) {
        return found.isEmpty() ? source : found;
    }
    return QDir::cleanPath(folder.absoluteFilePath(source));
}

void lookUpSources(QDomDocument& document, const QDir& folder)
{
    const QDomElement root = document.documentElement();
    for (QDomElement stack = root.firstChildElement("layers"); !stack.isNull();
         stack = stack.nextSiblingElement("layers"))
    {
        for (QDomElement layer = stack.firstChildElement("layer"); !layer.isNull();
             layer = layer.nextSiblingElement("layer"))
        {
            QDomElement source = layer.lastChildElement("datasource"); // which counts
            if (source.hasAttribute("value")) {
                source.setAttribute("value", lookedUp(source.attribute("value"), folder));
            }
        }
    }
}

} // namespace

bool mayBeMapDocument(const QString& source)
{
    const QUrl url(source);
    if (!url.host().isEmpty() && !url.isLocalFile()) {
        return false;
    }
    const QString suffix = QFileInfo(source).suffix().toLower();
    return suffix == "cmap" || suffix == "xml";
}

// Any thread.
MapReading parseMapDocument(const QByteArray& text, QDomDocument* document, QString* reason)
{
    if (hasTooManyAttributes(text)) {
        *reason = QCoreApplication::translate("MapDocumentReader",
                                              "it has an element with too many attributes");
        return MapReading::Refused;
    }
    *document = QDomDocument("CorvaneMapCanvas"); // one without a name has no tree yet
    *reason = TreeBuilder(text, document).build();
    if (!reason->isEmpty()) {
        *document = QDomDocument();
        return MapReading::Refused;
    }
    if (document->firstChildElement("mapcanvas").isNull()) {
        *reason = QCoreApplication::translate("MapDocumentReader", "it is not a map");
        return MapReading::OtherXml;
    }
    return MapReading::Read;
}

// Any thread.
MapReading readMapDocument(const QString& fileName, QDomDocument* document, QString* reason)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        *reason = file.errorString();
        return MapReading::Refused;
    }
    // one byte more than is taken: a pipe or a device tells no size before
    const QByteArray text = file.read(largestFile + 1);
    if (file.error() != QFileDevice::NoError) {
        *reason = file.errorString();
        return MapReading::Refused;
    }
    if (text.size() > largestFile) {
        *reason = QCoreApplication::translate("MapDocumentReader", "it is larger than %1 MiB")
                      .arg(largestFile / 1024 / 1024);
        return MapReading::Refused;
    }
    const MapReading result = parseMapDocument(text, document, reason);
    if (result == MapReading::Read) {
        lookUpSources(*document, QFileInfo(fileName).absoluteDir());
    }
    return result;
}

} // namespace Corvane::Viewer
