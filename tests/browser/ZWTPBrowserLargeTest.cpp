#include <tests/browser/BrowserStage.h>

#include <QTimer>
#include <QTreeWidget>
#include <QtTest>

using namespace Corvane;
using namespace Corvane::Tests;

namespace {

constexpr int many = 100000; // datasets
// Of these the reading takes a hundred, at four tokens for each dataset.
constexpr int leastTurns = 140;

// Of more than one byte, so that pieces end inside of letters unless somebody cares.
QString nameOf(int i)
{
    return QString::fromUtf8("gr\xc3\xbc\xc3\x9f\xe2\x82\xac%1.jp2").arg(i);
}

QByteArray manyDatasets()
{
    QByteArray all;
    for (int i = 0; i < many; ++i) {
        all += dataset("/north/" + nameOf(i).toUtf8());
    }
    return all;
}

/// Counts the turns of the event loop, and calls somebody in one of them.
class Turns : public QObject
{
public:
    explicit Turns(int chosen = -1, const std::function<void()>& then = nullptr)
    {
        connect(&timer, &QTimer::timeout, this, [this, chosen, then] {
            if (++count == chosen) {
                then();
            }
        });
        timer.start(0);
    }

    int count = 0;

private:
    QTimer timer;
};

} // namespace

/// A server with very many images does not hold up the program.
class ZWTPBrowserLargeTest : public QObject
{
    Q_OBJECT
private slots:
    void theTreeIsReadAndMadeBetweenOtherEvents();
    void theNextTreeTakesItsPlace();
    void aFlatListAndFoldersInFoldersKeepTheirOrder();
    void theDialogMayGoInBetween_data();
    void theDialogMayGoInBetween();
    void twoRepliesAtOnceLeaveOneTree();
};

void ZWTPBrowserLargeTest::theTreeIsReadAndMadeBetweenOtherEvents()
{
    BrowserStage stage;
    const QByteArray reply = discovery("12.0.0.0", manyDatasets());
    const Turns turns;
    QVERIFY(stage.connectToServer(reply));
    QVERIFY2(turns.count >= leastTurns, qPrintable(QString::number(turns.count)));
    QTreeWidgetItem* const root = stage.tree().topLevelItem(0);
    QVERIFY(root->isExpanded());
    QCOMPARE(stage.tree().currentItem(), root->child(0));
    QCOMPARE(root->childCount(), many);
    for (int i = 0; i < many; ++i) {
        if (root->child(i)->text(0) != nameOf(i)) {
            QCOMPARE(root->child(i)->text(0), nameOf(i));
        }
    }
}

void ZWTPBrowserLargeTest::theNextTreeTakesItsPlace()
{
    BrowserStage stage;
    QVERIFY(stage.connectToServer(discovery("12.0.0.0", manyDatasets())));
    QVERIFY(stage.connectToServer(discovery("12.0.0.0", dataset("/one.jp2"))));
    QCOMPARE(stage.tree().topLevelItem(0)->childCount(), 1);
    QCOMPARE(stage.tree().topLevelItemCount(), 1);
}

void ZWTPBrowserLargeTest::aFlatListAndFoldersInFoldersKeepTheirOrder()
{
    QByteArray content;
    for (int i = 0; i < 3000; ++i) { // more than a piece
        const QByteArray number = QByteArray::number(i);
        content += "<folder title=\"f" + number + "\"><datasets>" +
                   dataset("/b" + number + ".jp2") +
                   "</datasets><folders><folder title=\"empty\"/></folders></folder>" +
                   dataset("/c" + number + ".jp2");
    }
    BrowserStage stage;
    QVERIFY(stage.connectToServer(discovery("12.0.0.0", content)));
    QStringList expected(stage.treeLines().first());
    for (int i = 0; i < 3000; ++i) {
        expected << QString(" f%1 | _FOLDER | ").arg(i)
                 << QString("  b%1.jp2 | /b%1.jp2 | /b%1.jp2").arg(i)
                 << QString(" c%1.jp2 | /c%1.jp2 | /c%1.jp2").arg(i);
    }
    QCOMPARE(stage.treeLines(), expected);
}

void ZWTPBrowserLargeTest::theDialogMayGoInBetween_data()
{
    QTest::addColumn<int>("turn");
    QTest::newRow("while the reply is read") << 60;
    QTest::newRow("while the items are made") << 130;
}

void ZWTPBrowserLargeTest::theDialogMayGoInBetween()
{
    QFETCH(int, turn);
    BrowserStage stage;
    stage.server.on(BrowserStage::discoveryPath,
                    [reply = discovery("12.0.0.0", manyDatasets())](const HttpRequest&) {
                        return HttpReply::data(reply, "text/xml");
                    });
    stage.type("serverNameCombo", stage.address());
    stage.click("connectButton");
    bool isGone = false;
    const Turns turns(turn, [&] {
        QVERIFY(stage.isBusy());
        stage.closeBrowser();
        isGone = true;
    });
    QVERIFY(comesTrue([&] { return isGone && turns.count > turn + 100; }));
    QVERIFY(!QApplication::overrideCursor());
}

void ZWTPBrowserLargeTest::twoRepliesAtOnceLeaveOneTree()
{
    BrowserStage stage;
    stage.server.on(BrowserStage::discoveryPath,
                    [reply = discovery("12.0.0.0", manyDatasets())](const HttpRequest&) {
                        return HttpReply::data(reply, "text/xml");
                    });
    stage.type("serverNameCombo", stage.address());
    QVERIFY(stage.call("serverConnectKRS"));
    QVERIFY(stage.call("serverConnectKRS"));
    QVERIFY(comesTrue(
        [&] { return !QApplication::overrideCursor() && stage.tree().topLevelItemCount() > 0; }));
    QCOMPARE(stage.tree().topLevelItemCount(), 1);
    QCOMPARE(stage.tree().topLevelItem(0)->childCount(), many);
}

BROWSER_TEST_MAIN(ZWTPBrowserLargeTest)

#include "ZWTPBrowserLargeTest.moc"
