#include <corvane/browser/JsonReader.h>
#include <corvane/browser/JsonReader_p.h>

#include <QtTest>

// The reader's routines as they run once marks and digits are told apart: this program is linked with
// the routines and with the codes of Latin-1.
namespace JsonReader {

signed char codeOf(QChar character)
{
    return static_cast<signed char>(character.toLatin1());
}

} // namespace JsonReader

using namespace JsonReader;

class JsonRoutinesTest : public QObject
{
    Q_OBJECT
private slots:
    void tokensHaveTheirNumbers();
    void aTokenIsReadWithItsPlace_data();
    void aTokenIsReadWithItsPlace();
    void peekingLeavesTheIndex();
    void aValueBecomesAVariant_data();
    void aValueBecomesAVariant();
    void aNumberIsKeptAsText();
    void whatAStrictReaderRefusesIsTaken_data();
    void whatAStrictReaderRefusesIsTaken();
    void anEscapeGivesItsCharacter_data();
    void anEscapeGivesItsCharacter();
    void aFailureLeavesAnEmptyResult_data();
    void aFailureLeavesAnEmptyResult();
    void aFailureIsNeverTakenBack();
    void aTextOfTheCatalogIsRead();
};

void JsonRoutinesTest::tokensHaveTheirNumbers()
{
    QCOMPARE(QList<int>({TokenNone, TokenObjectOpen, TokenObjectClose, TokenArrayOpen,
                         TokenArrayClose, TokenColon, TokenComma, TokenString, TokenNumber,
                         TokenTrue, TokenFalse, TokenNull}),
             QList<int>({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}));
}

void JsonRoutinesTest::aTokenIsReadWithItsPlace_data()
{
    QTest::addColumn<QString>("json");
    QTest::addColumn<int>("token");
    QTest::addColumn<int>("end");
    QTest::newRow("a brace opens") << "{x" << 1 << 1;
    QTest::newRow("a brace closes") << "}x" << 2 << 1;
    QTest::newRow("a bracket opens") << "[x" << 3 << 1;
    QTest::newRow("a bracket closes") << "]x" << 4 << 1;
    QTest::newRow("a colon") << ":x" << 5 << 1;
    QTest::newRow("a comma") << ",x" << 6 << 1;
    QTest::newRow("a quotation mark") << "\"x" << 7 << 1;
    QTest::newRow("a minus sign") << "-1" << 8 << 1;
    QTest::newRow("the first digit") << "0" << 8 << 1;
    QTest::newRow("the last digit") << "9" << 8 << 1;
    QTest::newRow("true") << "true" << 9 << 4;
    QTest::newRow("false") << "false" << 10 << 5;
    QTest::newRow("null") << "null" << 11 << 4;
    QTest::newRow("white space is passed") << " \t\n\r:" << 5 << 5;
    QTest::newRow("an unknown character stays in front") << "  x" << 0 << 2;
    QTest::newRow("a plus sign starts no number") << "+1" << 0 << 0;
    QTest::newRow("a word cut short stays in front") << "tru" << 0 << 0;
    QTest::newRow("the end of the text") << "  " << 0 << 2;
    QTest::newRow("an empty text") << "" << 0 << 0;
}

void JsonRoutinesTest::aTokenIsReadWithItsPlace()
{
    QFETCH(QString, json);
    QFETCH(int, token);
    QFETCH(int, end);
    int index = 0;
    QCOMPARE(nextToken(json, index), token);
    QCOMPARE(index, end);
}

void JsonRoutinesTest::peekingLeavesTheIndex()
{
    const int index = 1;
    QCOMPARE(peekToken("[ {", index), int(TokenObjectOpen));
    QCOMPARE(index, 1);
}

void JsonRoutinesTest::aValueBecomesAVariant_data()
{
    QTest::addColumn<QString>("json");
    QTest::addColumn<QVariant>("value");
    QTest::newRow("an object is sorted by key")
        << R"({"b":true,"a":null})" << QVariant(QVariantMap{{"a", QVariant()}, {"b", true}});
    QTest::newRow("an empty object") << "{ }" << QVariant(QVariantMap());
    QTest::newRow("an array keeps its order")
        << R"(["z", 1, false])" << QVariant(QVariantList{"z", "1", false});
    QTest::newRow("an empty array") << "[]" << QVariant(QVariantList());
    QTest::newRow("a string") << R"( "text" )" << QVariant("text");
    QTest::newRow("an empty string") << R"("")" << QVariant(QString(""));
    QTest::newRow("nested")
        << R"({"a":[{"b":[[]]}]})"
        << QVariant(QVariantMap{
               {"a", QVariantList{QVariantMap{{"b", QVariantList{QVariant(QVariantList())}}}}}});
}

void JsonRoutinesTest::aValueBecomesAVariant()
{
    QFETCH(QString, json);
    QFETCH(QVariant, value);
    bool success = false;
    const QVariant result = parse(json, success);
    QVERIFY(success);
    QCOMPARE(result, value);
    QCOMPARE(result.type(), value.type());
}

void JsonRoutinesTest::aNumberIsKeptAsText()
{
    const QString json = " -12.50e+3]";
    int index = 0;
    bool success = true;
    const QVariant number = parseValue(json, index, success);
    QVERIFY(success);
    QCOMPARE(number.type(), QVariant::String);
    QCOMPARE(number.toString(), QString("-12.50e+3"));
    QCOMPARE(index, 10);
}

void JsonRoutinesTest::whatAStrictReaderRefusesIsTaken_data()
{
    QTest::addColumn<QString>("json");
    QTest::addColumn<QVariant>("value");
    QTest::newRow("text after the first value") << "[] x" << QVariant(QVariantList());
    QTest::newRow("no commas and too many")
        << R"([,1,,"a""b" 2,])" << QVariant(QVariantList{"1", "a", "b", "2"});
    QTest::newRow("no commas between members")
        << R"({,"a":1"b":2,,})" << QVariant(QVariantMap{{"a", "1"}, {"b", "2"}});
    QTest::newRow("a key that starts with a digit")
        << R"({1key":1})" << QVariant(QVariantMap{{"key", "1"}});
    QTest::newRow("a key that starts with a bracket")
        << R"({[key":1})" << QVariant(QVariantMap{{"key", "1"}});
    QTest::newRow("numbers of any shape")
        << "[1.2.3,1-2,0012,1e,-]" << QVariant(QVariantList{"1.2.3", "1-2", "0012", "1e", "-"});
    QTest::newRow("control characters in a string") << "\"a\n\tb\"" << QVariant("a\n\tb");
    QTest::newRow("a repeated key has its last value")
        << R"({"a":1,"a":2})" << QVariant(QVariantMap{{"a", "2"}});
}

void JsonRoutinesTest::whatAStrictReaderRefusesIsTaken()
{
    aValueBecomesAVariant();
}

void JsonRoutinesTest::anEscapeGivesItsCharacter_data()
{
    QTest::addColumn<QString>("json");
    QTest::addColumn<QString>("text");
    QTest::newRow("a quotation mark") << R"("\"")"
                                      << "\"";
    QTest::newRow("a backslash") << R"("\\")"
                                 << "\\";
    QTest::newRow("a slash") << R"("\/")"
                             << "/";
    QTest::newRow("control characters") << R"("\b\f\n\r\t")" << QString("\x08\x0c\x0a\x0d\x09");
    QTest::newRow("a code") << R"("\u00e4x")" << QString(QChar(0xe4)) + "x";
    QTest::newRow("a surrogate pair") << R"("\ud83d\uDE00")" << QString::fromUcs4(U"\U0001F600", 1);
    QTest::newRow("a bad code is the character 0") << R"("\u00zzx")" << QString(QChar(0)) + "x";
    QTest::newRow("an unknown escape is dropped") << R"("a\qb")"
                                                  << "ab";
}

void JsonRoutinesTest::anEscapeGivesItsCharacter()
{
    QFETCH(QString, json);
    QFETCH(QString, text);
    int index = 0;
    bool success = true;
    QCOMPARE(parseString(json, index, success).toString(), text);
    QVERIFY(success);
    QCOMPARE(index, json.size());
}

void JsonRoutinesTest::aFailureLeavesAnEmptyResult_data()
{
    QTest::addColumn<QString>("json");
    QTest::addColumn<QVariant>("value");
    const QVariant map = QVariantMap();
    const QVariant list = QVariantList();
    QTest::newRow("an object without an end") << R"({"a":1)" << map;
    QTest::newRow("an object with a bad value") << R"({"a":x})" << map;
    QTest::newRow("an object without a colon") << R"({"a" 1})" << map;
    QTest::newRow("a key without an end") << R"({,-)" << map;
    QTest::newRow("a key that starts with no mark") << "{'key\":1}" << map;
    QTest::newRow("an array without an end") << "[1" << list;
    QTest::newRow("an array with a bad value") << "[1,}" << list;
    QTest::newRow("a word that runs on in an array") << "[truely]" << list;
    QTest::newRow("a string without an end") << "\"a" << QVariant();
    QTest::newRow("a string that ends in a backslash") << "\"a\\" << QVariant();
    QTest::newRow("a code cut short") << R"("\u12)" << QVariant();
    QTest::newRow("a mark that opens nothing") << ":" << QVariant();
}

void JsonRoutinesTest::aFailureLeavesAnEmptyResult()
{
    QFETCH(QString, json);
    QFETCH(QVariant, value);
    bool success = true;
    const QVariant result = parse(json, success);
    QVERIFY(!success);
    QCOMPARE(result, value);
    QCOMPARE(result.type(), value.type());
}

void JsonRoutinesTest::aFailureIsNeverTakenBack()
{
    int index = 0;
    bool success = false;
    QCOMPARE(parseValue("true", index, success), QVariant(true));
    QVERIFY(!success);
    index = 0;
    QVERIFY(!parseString("\"text\"", index, success).toString().isEmpty());
    QVERIFY(!success);
}

void JsonRoutinesTest::aTextOfTheCatalogIsRead()
{
    bool success = false;
    const QVariantMap map =
        parse(R"({"count":2,"results":[{"name":"a","decoderName":"ZWT"},{"name":"b"}]})", success)
            .toMap();
    QVERIFY(success);
    const QVariantList results = map["results"].toList();
    QCOMPARE(results.size(), 2);
    QCOMPARE(results[0].toMap()["decoderName"].toString(), QString("ZWT"));
    QVERIFY(!results[1].toMap()["decoderName"].isValid());
}

QTEST_GUILESS_MAIN(JsonRoutinesTest)
#include "JsonRoutinesTest.moc"
