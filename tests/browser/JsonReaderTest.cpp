#include <corvane/browser/JsonReader.h>

#include <QtTest>

class JsonReaderTest : public QObject
{
    Q_OBJECT
private slots:
    void theThreeWordsAreRead_data();
    void theThreeWordsAreRead();
    void nothingButTheThreeWordsIsRead_data();
    void nothingButTheThreeWordsIsRead();
    void aNullTextIsNoFailure();
    void anEmptyTextIsAFailure();
    void theFlagTellsTheWordNullFromAFailure();
    void theFlagIsDroppedByTheShortForm();
    void aHundredThousandBracketsAreRefusedWithoutDescent();
};

void JsonReaderTest::theThreeWordsAreRead_data()
{
    QTest::addColumn<QString>("json");
    QTest::addColumn<QVariant>("value");
    QTest::newRow("true") << "true" << QVariant(true);
    QTest::newRow("false") << "false" << QVariant(false);
    QTest::newRow("null") << "null" << QVariant();
    QTest::newRow("white space before a word and any text behind")
        << " \t\r\n true }, [x" << QVariant(true);
    QTest::newRow("a word that runs on") << "truely" << QVariant(true);
    QTest::newRow("a second value behind the first") << "false true" << QVariant(false);
}

void JsonReaderTest::theThreeWordsAreRead()
{
    QFETCH(QString, json);
    QFETCH(QVariant, value);
    bool success = false;

    const QVariant result = JsonReader::parse(json, success);

    QVERIFY(success);
    QCOMPARE(result, value);
    QCOMPARE(result.type(), value.type());
}

void JsonReaderTest::nothingButTheThreeWordsIsRead_data()
{
    QTest::addColumn<QString>("json");
    QTest::newRow("an empty object") << "{}";
    QTest::newRow("an object") << R"({"results":[]})";
    QTest::newRow("an array") << "[true]";
    QTest::newRow("a string") << R"("text")";
    QTest::newRow("a number") << "12";
    QTest::newRow("a number of one digit") << "7";
    QTest::newRow("a negative number") << "-1";
    QTest::newRow("a digit of another script") << QString(QChar(0x0663));
    QTest::newRow("a colon") << ":";
    QTest::newRow("a word cut short") << "nul";
    QTest::newRow("another word cut short") << "fals";
    QTest::newRow("a word in capitals") << "TRUE";
    QTest::newRow("another white space before a word") << QString(QChar(0x00A0)) + "true";
    QTest::newRow("a form feed before a word") << "\ftrue";
    QTest::newRow("white space alone") << " \n";
    QTest::newRow("a character 0") << QString(QChar(u'\0'));
}

void JsonReaderTest::nothingButTheThreeWordsIsRead()
{
    QFETCH(QString, json);
    bool success = true;

    const QVariant result = JsonReader::parse(json, success);

    QVERIFY(!success);
    QVERIFY(!result.isValid());
}

void JsonReaderTest::aNullTextIsNoFailure()
{
    bool success = false;
    QVERIFY(!JsonReader::parse(QString(), success).isValid());
    QVERIFY(success);
}

void JsonReaderTest::anEmptyTextIsAFailure()
{
    bool success = true;
    QVERIFY(!JsonReader::parse(QString(""), success).isValid());
    QVERIFY(!success);
}

void JsonReaderTest::theFlagTellsTheWordNullFromAFailure()
{
    bool success = false;
    const QVariant word = JsonReader::parse("null", success);
    QVERIFY(success);
    const QVariant failure = JsonReader::parse("nil", success);
    QVERIFY(!success);
    QCOMPARE(word, failure);
}

void JsonReaderTest::theFlagIsDroppedByTheShortForm()
{
    QCOMPARE(JsonReader::parse("true"), QVariant(true));
    QCOMPARE(JsonReader::parse("{}"), QVariant());
}

void JsonReaderTest::aHundredThousandBracketsAreRefusedWithoutDescent()
{
    bool success = true;
    JsonReader::parse(QString(100000, u'['), success);
    QVERIFY(!success);
}

QTEST_GUILESS_MAIN(JsonReaderTest)
#include "JsonReaderTest.moc"
