#pragma once

#include <QChar>
#include <QString>
#include <QVariant>

/// The routines of the reader. Each starts at index, moves it behind what it read and leaves success
/// alone unless it fails; after a failure the result is empty.
namespace JsonReader {

enum Token
{
    TokenNone, ///< end of the text, or nothing recognised
    TokenObjectOpen,
    TokenObjectClose,
    TokenArrayOpen,
    TokenArrayClose,
    TokenColon,
    TokenComma,
    TokenString, ///< its opening quotation mark
    TokenNumber, ///< its first character
    TokenTrue,
    TokenFalse,
    TokenNull
};

/// The code by which nextToken tells marks and digits.
signed char codeOf(QChar character);

/// A map, a list, a string, a number as its text, a bool or an invalid variant.
QVariant parseValue(const QString& json, int& index, bool& success);
/// Commas between members are free; the last value of a repeated key counts.
QVariant parseObject(const QString& json, int& index, bool& success);
/// Commas between elements are free.
QVariant parseArray(const QString& json, int& index, bool& success);
/// Takes the first character for the opening quotation mark, whatever it is.
QVariant parseString(const QString& json, int& index, bool& success);
/// Reads a token. Where nothing is recognised, index is left at the character.
int nextToken(const QString& json, int& index);
/// The token that nextToken would read.
int peekToken(const QString& json, int index);
void skipWhitespace(const QString& json, int& index);

} // namespace JsonReader
