#include <corvane/browser/XmlReading_p.h>

#include <QRegularExpression>
#include <QTextCodec>
#include <QTextDecoder>
#include <QTimer>

#include <utility>

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

XmlWalk::XmlWalk(const QByteArray& data) : bytes(data), decoder(codecOf(data)->makeDecoder())
{
    reader.setNamespaceProcessing(false);
}

XmlWalk::~XmlWalk() = default;

// Up to the end of a tag, so that no text is cut in two.
bool XmlWalk::feed()
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

bool XmlWalk::readOn()
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

bool XmlWalk::take(QXmlStreamReader::TokenType token)
{
    switch (token) {
    case QXmlStreamReader::StartElement:
        isBroken = ++depth > deepestNesting;
        startElement(reader.qualifiedName().toString(), reader.attributes());
        break;
    case QXmlStreamReader::EndElement:
        endElement();
        --depth;
        break;
    case QXmlStreamReader::Characters:
        if (!reader.isWhitespace() || reader.isCDATA()) {
            addText(reader.text().toString());
        }
        break;
    case QXmlStreamReader::Invalid:
        isBroken = true;
        break;
    default:
        break;
    }
    return !isBroken && !reader.atEnd();
}

XmlReading::XmlReading(const QByteArray& data)
    : XmlWalk(data),
      document(QString()),
      current(document)
{
}

void XmlReading::startElement(const QString& name, const QXmlStreamAttributes& attributes)
{
    QDomElement element = document.createElement(name);
    for (const QXmlStreamAttribute& attribute : attributes) {
        element.setAttribute(attribute.qualifiedName().toString(), attribute.value().toString());
    }
    current.appendChild(element);
    current = element;
}

void XmlReading::endElement()
{
    current = current.parentNode();
}

void XmlReading::addText(const QString& text)
{
    current.appendChild(document.createTextNode(text));
}

FirstElements::FirstElements(const QByteArray& data, QStringList wanted)
    : XmlWalk(data),
      names(std::move(wanted))
{
}

bool FirstElements::has(const char* name) const
{
    return isWhole() && elements.contains(QLatin1String(name));
}

QString FirstElements::attribute(const char* element, const char* name) const
{
    return has(element) ? elements[QLatin1String(element)].value(QLatin1String(name)).toString()
                        : QString();
}

void FirstElements::startElement(const QString& name, const QXmlStreamAttributes& attributes)
{
    if (names.contains(name) && !elements.contains(name)) {
        elements.insert(name, attributes);
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
