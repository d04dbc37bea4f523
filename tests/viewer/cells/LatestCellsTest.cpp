#include <viewer/cells/LatestCells.h>

#include <corvane/map/IRasterLayerCells.h>
#include <tests/map/TestLayers.h>

#include <QSignalSpy>
#include <QtTest>

#include <deque>
#include <memory>

using namespace Corvane;
using namespace Corvane::Map;
using namespace Corvane::Viewer;

namespace {

/// Holds the requests back until somebody lets it answer.
class HoldingLayer : public TestRasterLayer, public IRasterLayerCells
{
    Q_OBJECT
    Q_INTERFACES(Corvane::Map::IRasterLayerCells)
public:
    void readCells(std::shared_ptr<CellRequest> request) override
    {
        asked << request->getWindow().world.x();
        held.push_back(std::move(request));
    }
    /// The oldest one, as a layer does: what is cancelled comes back as dropped.
    void answer()
    {
        const std::shared_ptr<CellRequest> request = held.front();
        held.pop_front();
        CellReading reading;
        reading.state =
            request->isCancelled() ? CellReading::State::Dropped : CellReading::State::Read;
        reading.column = int(request->getWindow().world.x());
        request->finish(reading);
        QCoreApplication::processEvents();
    }

    std::deque<std::shared_ptr<CellRequest>> held;
    QVector<double> asked;
};

CellRequest::Window at(double x)
{
    return {QPointF(x, 0.0), 1, 0};
}

} // namespace

class LatestCellsTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void aQuestionIsAnswered();
    void ofWhatIsAskedMeanwhileOnlyTheLastIsAsked();
    void aQuickAnswerCountsThoughAnotherQuestionWaits();
    void aSlowAnswerIsGivenUpForTheNextQuestion();
    void theUserHearsOfALongWait();
    void stoppingForgetsEverything();
    void nothingComesAfterItIsGone();
    void aLayerThatIsGoneIsNotAsked();
    void aLayerWithoutCellsIsNotAsked();

private:
    std::unique_ptr<HoldingLayer> layer;
    std::unique_ptr<LatestCells> cells;
    QVector<int> answers; // columns
};

void LatestCellsTest::init()
{
    answers.clear();
    layer = std::make_unique<HoldingLayer>();
    cells = std::make_unique<LatestCells>(layer.get(), nullptr);
    connect(cells.get(), &LatestCells::answered, this,
            [this](const CellReading& reading) { answers << reading.column; });
}

void LatestCellsTest::aQuestionIsAnswered()
{
    cells->ask(at(7));
    QCOMPARE(layer->held.size(), std::size_t{1});
    QVERIFY(answers.isEmpty());
    layer->answer();
    QCOMPARE(answers, QVector<int>({7}));
    cells->ask(at(8));
    layer->answer();
    QCOMPARE(answers, QVector<int>({7, 8}));
}

void LatestCellsTest::ofWhatIsAskedMeanwhileOnlyTheLastIsAsked()
{
    for (int x = 1; x <= 100; ++x) {
        cells->ask(at(x));
        QCOMPARE(layer->held.size(), std::size_t{1});
    }
    layer->answer();
    layer->answer();
    QVERIFY(layer->held.empty());
    QCOMPARE(layer->asked, QVector<double>({1.0, 100.0}));
    QCOMPARE(answers.last(), 100);
}

void LatestCellsTest::aQuickAnswerCountsThoughAnotherQuestionWaits()
{
    cells->ask(at(1));
    cells->ask(at(2));
    QVERIFY(!layer->held.front()->isCancelled());
    layer->answer();
    QCOMPARE(answers, QVector<int>({1}));
    layer->answer();
    QCOMPARE(answers, QVector<int>({1, 2}));
}

void LatestCellsTest::aSlowAnswerIsGivenUpForTheNextQuestion()
{
    QSignalSpy waiting(cells.get(), &LatestCells::waiting);
    cells->ask(at(1));
    QTRY_COMPARE(waiting.count(), 1);
    QVERIFY(!layer->held.front()->isCancelled()); // it is still what the user wants
    cells->ask(at(2));
    QVERIFY(layer->held.front()->isCancelled());
    layer->answer();
    QVERIFY(answers.isEmpty());
    layer->answer();
    QCOMPARE(answers, QVector<int>({2}));
}

void LatestCellsTest::theUserHearsOfALongWait()
{
    QSignalSpy waiting(cells.get(), &LatestCells::waiting);
    cells->ask(at(1));
    cells->ask(at(2));
    QCOMPARE(waiting.count(), 0);
    QTRY_COMPARE(waiting.count(), 1);
    QVERIFY(layer->held.front()->isCancelled()); // another one waits behind it
    layer->answer();
    QTRY_COMPARE(waiting.count(), 2);
    layer->answer();
    QCOMPARE(answers, QVector<int>({2}));
}

void LatestCellsTest::stoppingForgetsEverything()
{
    cells->ask(at(1));
    cells->ask(at(2));
    cells->stop();
    QVERIFY(layer->held.front()->isCancelled());
    layer->answer();
    QVERIFY(answers.isEmpty());
    QVERIFY(layer->held.empty());
    cells->ask(at(3));
    layer->answer();
    QCOMPARE(answers, QVector<int>({3}));
}

void LatestCellsTest::nothingComesAfterItIsGone()
{
    cells->ask(at(1));
    cells.reset();
    QVERIFY(layer->held.front()->isCancelled());
    layer->answer();
    QVERIFY(answers.isEmpty());
}

void LatestCellsTest::aLayerThatIsGoneIsNotAsked()
{
    cells->ask(at(1));
    cells->ask(at(2));
    const std::shared_ptr<CellRequest> request = layer->held.front();
    layer.reset();
    CellReading reading;
    reading.state = CellReading::State::Read;
    reading.column = 1;
    request->finish(reading);
    QCoreApplication::processEvents();
    QCOMPARE(answers, QVector<int>({1}));
    cells->ask(at(3));
    QCoreApplication::processEvents();
    QCOMPARE(answers, QVector<int>({1}));
}

void LatestCellsTest::aLayerWithoutCellsIsNotAsked()
{
    TestRasterLayer plain;
    QVERIFY(!LatestCells::canAsk(&plain));
    QVERIFY(LatestCells::canAsk(layer.get()));
    QVERIFY(!LatestCells::canAsk(nullptr));
    LatestCells none(&plain, nullptr);
    none.ask(at(1));
    none.ask(at(2));
}

QTEST_MAIN(LatestCellsTest)
#include "LatestCellsTest.moc"
