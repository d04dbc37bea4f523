#include <plugins/common/OpeningPatience.h>

#include <QDeadlineTimer>
#include <QtTest>

using Corvane::Map::OpeningPatience;

namespace {

void waitFor(int milliseconds)
{
    const OpeningPatience patience;
    const QDeadlineTimer over(milliseconds);
    while (!over.hasExpired()) {
    }
}

} // namespace

class OpeningPatienceTest : public QObject
{
    Q_OBJECT
private slots:
    void eachSourceByItselfIsWaitedFor();
    void theSourcesOfADocumentShareOneWait();
    void waitsBesideADocumentDoNotCount();
};

void OpeningPatienceTest::eachSourceByItselfIsWaitedFor()
{
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(OpeningPatience().left(), 40);
        waitFor(30);
    }
}

void OpeningPatienceTest::theSourcesOfADocumentShareOneWait()
{
    {
        const OpeningPatience::Document layer;
        QCOMPARE(OpeningPatience().left(), 40);
        waitFor(25);
        QVERIFY(OpeningPatience().left() <= 15);
    }
    const OpeningPatience::Document nextLayer;
    QVERIFY(OpeningPatience().left() <= 15);
    waitFor(25);
    QCOMPARE(OpeningPatience().left(), 0);
}

void OpeningPatienceTest::waitsBesideADocumentDoNotCount()
{
    QCOMPARE(OpeningPatience().left(), 40);
}

QTEST_GUILESS_MAIN(OpeningPatienceTest)
#include "OpeningPatienceTest.moc"
