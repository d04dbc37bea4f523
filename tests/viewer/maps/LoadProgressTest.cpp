#include <viewer/maps/LoadProgress.h>

#include <corvane/core/Application.h>
#include <corvane/map/MapView.h>

#include <tests/map/TestLayers.h>

#include <QSignalSpy>
#include <QtTest>

using namespace Corvane;
using namespace Corvane::Viewer;

/// Counts how often it is asked.
class AskedLayer : public TestRasterLayer
{
    Q_OBJECT
public:
    explicit AskedLayer(qint8 percent) { percentComplete = percent; }

    qint8 getPercentComplete() override
    {
        ++asked;
        return percentComplete;
    }

    int asked = 0;
};

class LoadProgressTest : public QObject
{
    Q_OBJECT
private slots:
    void percentIsTheMeanOfWhatIsSeen();
    void followsAViewUntilItIsComplete();
    void aCompleteViewIsAskedOnlyAfterAChange();
    void aViewThatIsGoneIsComplete();
};

void LoadProgressTest::percentIsTheMeanOfWhatIsSeen()
{
    Map::MapView view;
    QCOMPARE(LoadProgress::percentOf(view), 100);
    view.addLayer(new AskedLayer(40));
    view.addLayer(new AskedLayer(100));
    QCOMPARE(LoadProgress::percentOf(view), 70);

    const auto hidden = new AskedLayer(0);
    hidden->visible = false;
    view.addLayer(hidden);
    const auto invalid = new AskedLayer(0);
    invalid->valid = false;
    view.addLayer(invalid);
    QCOMPARE(LoadProgress::percentOf(view), 70);
}

void LoadProgressTest::followsAViewUntilItIsComplete()
{
    Map::MapView view;
    const auto layer = new AskedLayer(40);
    view.addLayer(layer);
    LoadProgress progress(nullptr);
    QSignalSpy changed(&progress, &LoadProgress::changed);

    progress.setView(&view);
    QCOMPARE(changed.last().first().toInt(), 40);
    layer->percentComplete = 80;
    QTRY_COMPARE(changed.last().first().toInt(), 80);
    layer->percentComplete = 100;
    QTRY_COMPARE(changed.last().first().toInt(), 100);
}

void LoadProgressTest::aCompleteViewIsAskedOnlyAfterAChange()
{
    Map::MapView view;
    view.resize(200, 200);
    view.show();
    const auto layer = new AskedLayer(100);
    view.addLayer(layer);
    LoadProgress progress(nullptr);
    progress.setView(&view);
    QSignalSpy changed(&progress, &LoadProgress::changed);

    view.setBounds(0.0, 50.0, 50.0, 0.0);
    QTRY_VERIFY(changed.count() >= 1);

    // A second follower that is busy the whole time shows that time has passed.
    Map::MapView busyView;
    busyView.addLayer(new AskedLayer(10));
    QCoreApplication::processEvents(); // what is still to be painted
    LoadProgress busy(nullptr);
    QSignalSpy busyChanged(&busy, &LoadProgress::changed);
    busy.setView(&busyView);
    QTRY_VERIFY(busyChanged.count() >= 3);
    const int asked = layer->asked;
    QTRY_VERIFY(busyChanged.count() >= 8);
    QCOMPARE(layer->asked, asked);

    layer->percentComplete = 30;
    view.update();
    QTRY_COMPARE(changed.last().first().toInt(), 30);
}

void LoadProgressTest::aViewThatIsGoneIsComplete()
{
    LoadProgress progress(nullptr);
    QSignalSpy changed(&progress, &LoadProgress::changed);
    {
        Map::MapView view;
        view.addLayer(new AskedLayer(20));
        progress.setView(&view);
        QCOMPARE(changed.last().first().toInt(), 20);
    }
    QTRY_COMPARE(changed.last().first().toInt(), 100);
}

int main(int argc, char** argv)
{
    Application application(argc, argv, "Corvane Viewer Test");
    LoadProgressTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "LoadProgressTest.moc"
