#include <corvane/browser/XmlReading_p.h>

#include <QRegularExpression>
#include <QTextCodec>
#include <QTextDecoder>
#include <QTimer>

namespace Corvane::Gui {
namespace {

constexpr int tokensInPiece = 4000; // some milliseconds
constexpr int bytesInPiece = 256 << 10;
// QDomDocument recurses as it is freed: this many levels take less than half of a usual stack.
constexpr int deepestNesting = 12000; // elements

/// The encoding of the mark of order, of the declaration, or UTF-8.
QTextCodec* codecOf(const QByteArray& data)
{
    constexpr int longestDeclaration = 200; // bytes
    static const QRegularExpression declaration(
        QStringLiteral("^<\\?xml[^>]*encoding\\s*=\\s*[\"']([A-Za-z0-9._-]+)[\"']"));
    if (QTextCodec* const marked = QTextCodec::codecForUtfText(data, nullptr)) {
        return marked;
    }
    const QString start = QString::fromLatin1(data.left(longestDeclaration));
    QTextCodec* const named =
        QTextCodec::codecForName(declaration.match(start).captured(1).toLatin1());
    return named ? named : QTextCodec::codecForName("UTF-8");
}

} // namespace

XmlReading::XmlReading(const QByteArray& data)
    : bytes(data),
      decoder(codecOf(data)->makeDecoder()),
      document(QString())
{
    reader.setNamespaceProcessing(false);
    current = document;
}

XmlReading::~XmlReading() = default;

// Up to the end of a tag, so that no text is cut in two.
bool XmlReading::feed()
{
    if (fed == bytes.size()) {
        return false;
    }
    const int tagEnd = bytes.indexOf('>', fed + bytesInPiece);
    const int next = tagEnd < 0 ? bytes.size() : tagEnd + 1;
    reader.addData(decoder->toUnicode(bytes.constData() + fed, next - fed));
    fed = next;
    return true;
}

bool XmlReading::readOn()
{
    for (int i = 0; i < tokensInPiece; ++i) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        const bool isHungry = reader.error() == QXmlStreamReader::PrematureEndOfDocumentError;
        if (!(isHungry && feed()) && !take(token)) {
            return false;
        }
    }
    return true;
}

bool XmlReading::take(QXmlStreamReader::TokenType token)
{
    switch (token) {
    case QXmlStreamReader::StartElement:
        startElement();
        break;
    case QXmlStreamReader::EndElement:
        current = current.parentNode();
        --depth;
        break;
    case QXmlStreamReader::Characters:
        addText();
        break;
    case QXmlStreamReader::Invalid:
        isBroken = true;
        break;
    default:
        break;
    }
    return !isBroken && !reader.atEnd();
}

void XmlReading::startElement()
{
    isBroken = ++depth > deepestNesting;
    QDomElement element = document.createElement(reader.qualifiedName().toString());
    const QXmlStreamAttributes attributes = reader.attributes();
    for (const QXmlStreamAttribute& attribute : attributes) {
        element.setAttribute(attribute.qualifiedName().toString(), attribute.value().toString());
    }
    current.appendChild(element);
    current = element;
}

void XmlReading::addText()
{
    if (!reader.isWhitespace() || reader.isCDATA()) {
        current.appendChild(document.createTextNode(reader.text().toString()));
    }
}

void takeTurns(QObject* owner, const std::function<bool()>& step, const std::function<void()>& done)
{
    if (step()) {
        QTimer::singleShot(0, owner, [owner, step, done] { takeTurns(owner, step, done); });
    } else {
        done();
    }
}

} // namespace Corvane::Gui
