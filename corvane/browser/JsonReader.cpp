#include <corvane/browser/JsonReader.h>

#include <corvane/browser/JsonReader_p.h>

#include <QLatin1String>
#include <QStringView>

namespace JsonReader {
namespace {

constexpr int escapedDigits = 4; // of a \u escape
constexpr int hexadecimal = 16;

bool isNumberCharacter(QChar character)
{
    return QStringView(u"0123456789+-.eE").contains(character);
}

/// Takes word where it stands at index.
bool takeWord(const QString& json, int& index, QLatin1String word)
{
    if (QStringView(json).mid(index, word.size()) != word) {
        return false;
    }
    index += word.size();
    return true;
}

QVariant failed(bool& success)
{
    success = false;
    return QVariant();
}

QVariant parseNumber(const QString& json, int& index)
{
    skipWhitespace(json, index);
    const int start = index;
    while (index < json.size() && isNumberCharacter(json[index])) {
        ++index;
    }
    return json.mid(start, index - start);
}

/// Takes what stands behind a backslash. An escape that is not known is dropped with its backslash.
/// False at the end of the text.
bool takeEscape(const QString& json, int& index, QString& text)
{
    if (index >= json.size()) {
        return false;
    }
    switch (const QChar mark = json[index++]; mark.unicode()) {
    case u'"':
    case u'\\':
    case u'/':
        text += mark;
        break;
    case u'b':
        text += QLatin1Char('\b');
        break;
    case u'f':
        text += QLatin1Char('\f');
        break;
    case u'n':
        text += QLatin1Char('\n');
        break;
    case u'r':
        text += QLatin1Char('\r');
        break;
    case u't':
        text += QLatin1Char('\t');
        break;
    case u'u':
        if (json.size() - index < escapedDigits) {
            return false;
        }
        // What is no number becomes the character 0.
        text += QChar(json.mid(index, escapedDigits).toInt(nullptr, hexadecimal));
        index += escapedDigits;
        break;
    default:
        break;
    }
    return true;
}

} // namespace

QVariant parse(const QString& json, bool& success)
{
    success = true;
    if (json.isNull()) {
        return QVariant();
    }
    int index = 0;
    return parseValue(json, index, success);
}

QVariant parse(const QString& json)
{
    bool success = true;
    return parse(json, success);
}

QVariant parseValue(const QString& json, int& index, bool& success)
{
    switch (peekToken(json, index)) {
    case TokenObjectOpen:
        return parseObject(json, index, success);
    case TokenArrayOpen:
        return parseArray(json, index, success);
    case TokenString:
        return parseString(json, index, success);
    case TokenNumber:
        return parseNumber(json, index);
    case TokenTrue:
        nextToken(json, index);
        return true;
    case TokenFalse:
        nextToken(json, index);
        return false;
    case TokenNull:
        nextToken(json, index);
        return QVariant();
    default:
        return failed(success);
    }
}

QVariant parseObject(const QString& json, int& index, bool& success)
{
    QVariantMap map;
    nextToken(json, index); // the opening brace
    for (;;) {
        const int token = peekToken(json, index);
        if (token == TokenNone) {
            success = false;
            return QVariantMap();
        }
        if (token == TokenComma) {
            nextToken(json, index);
            continue;
        }
        if (token == TokenObjectClose) {
            nextToken(json, index);
            return map;
        }
        const QString key = parseString(json, index, success).toString();
        if (!success) {
            return QVariantMap();
        }
        if (nextToken(json, index) != TokenColon) {
            success = false;
            return QVariantMap();
        }
        const QVariant value = parseValue(json, index, success);
        if (!success) {
            return QVariantMap();
        }
        map[key] = value;
    }
}

QVariant parseArray(const QString& json, int& index, bool& success)
{
    QVariantList list;
    nextToken(json, index); // the opening bracket
    for (;;) {
        const int token = peekToken(json, index);
        if (token == TokenNone) {
            success = false;
            return QVariantList();
        }
        if (token == TokenComma) {
            nextToken(json, index);
            continue;
        }
        if (token == TokenArrayClose) {
            nextToken(json, index);
            return list;
        }
        const QVariant value = parseValue(json, index, success);
        if (!success) {
            return QVariantList();
        }
        list.append(value);
    }
}

QVariant parseString(const QString& json, int& index, bool& success)
{
    skipWhitespace(json, index);
    QString text;
    if (index >= json.size()) {
        return failed(success);
    }
    ++index; // the opening quotation mark
    for (;;) {
        if (index >= json.size()) {
            return failed(success);
        }
        const QChar character = json[index++];
        if (character == QLatin1Char('"')) {
            return text;
        }
        if (character != QLatin1Char('\\')) {
            text += character;
        } else if (!takeEscape(json, index, text)) {
            return failed(success);
        }
    }
}

int nextToken(const QString& json, int& index)
{
    skipWhitespace(json, index);
    if (index == json.size()) {
        return TokenNone;
    }
    const signed char code = codeOf(json[index]);
    ++index;
    switch (code) {
    case '{':
        return TokenObjectOpen;
    case '}':
        return TokenObjectClose;
    case '[':
        return TokenArrayOpen;
    case ']':
        return TokenArrayClose;
    case ':':
        return TokenColon;
    case ',':
        return TokenComma;
    case '"':
        return TokenString;
    case '-':
        return TokenNumber;
    default:
        if (code >= '0' && code <= '9') {
            return TokenNumber;
        }
    }
    --index;
    if (takeWord(json, index, QLatin1String("true"))) {
        return TokenTrue;
    }
    if (takeWord(json, index, QLatin1String("false"))) {
        return TokenFalse;
    }
    if (takeWord(json, index, QLatin1String("null"))) {
        return TokenNull;
    }
    return TokenNone;
}

int peekToken(const QString& json, int index)
{
    return nextToken(json, index);
}

void skipWhitespace(const QString& json, int& index)
{
    while (index < json.size() && QStringView(u" \t\n\r").contains(json[index])) {
        ++index;
    }
}

} // namespace JsonReader
