#include <tests/support/PseudoLocale.h>

#include <QRegularExpression>

namespace Corvane::Tests {
namespace {

constexpr int lettersPerPad = 3; // a third longer

QChar accented(QChar letter)
{
    static const QString plain = "AEIOUaeiouncyNCY";
    static const QString marked = QString::fromUtf8("ÀÉÎÕÜàéîõüñçýÑÇÝ");
    const int at = plain.indexOf(letter);
    return at < 0 ? letter : marked.at(at);
}

} // namespace

QString PseudoLocale::lengthened(const QString& text)
{
    // places, mark-up and entities stay as they are
    static const QRegularExpression fixed("%[Ln]?\\d*|<[^>]*>|&[a-z]+;");
    QString letters;
    int from = 0;
    auto places = fixed.globalMatch(text);
    const auto accentUpTo = [&](int end) {
        for (; from < end; ++from) {
            letters += accented(text.at(from));
        }
    };
    while (places.hasNext()) {
        const QRegularExpressionMatch place = places.next();
        accentUpTo(place.capturedStart());
        letters += place.captured();
        from = place.capturedEnd();
    }
    accentUpTo(text.size());
    return '[' + letters + QString(text.size() / lettersPerPad, '~') + ']';
}

QString PseudoLocale::translate(const char* context, const char* text, const char*, int) const
{
    const QString owner = QString::fromLatin1(context);
    const bool isOfQt = owner.startsWith('Q') && owner.size() > 1 && owner.at(1).isUpper();
    return isOfQt ? QString() : lengthened(QString::fromUtf8(text));
}

} // namespace Corvane::Tests
