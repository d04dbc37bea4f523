#include "MapViewPrivates.h"

#include <QKeyEvent>
#include <QSettings>
#include <QTest>

using Corvane::Map::MapView;

/// A map view in a program whose application object is Qt's own: there is no settings store.
class MapViewWithoutApplicationTest : public QObject
{
    Q_OBJECT
private slots:
    void startsWithTheDefaults();
    void aKeyForTheMainWindowIsIgnored();
};

void MapViewWithoutApplicationTest::startsWithTheDefaults()
{
    MapView view;
    view.show();
    QCOMPARE(view.getBackgroundColor(), QColor(255, 255, 255, 255));
    QVERIFY(!view.getDrawCrosshair());
    view.onMapAction(MapView::MapZoomIn);
    QCOMPARE(animationOf(view).state(), QAbstractAnimation::Running);
}

void MapViewWithoutApplicationTest::aKeyForTheMainWindowIsIgnored()
{
    MapView view;
    QKeyEvent event(QEvent::KeyPress, Qt::Key_F9, Qt::NoModifier);
    QApplication::sendEvent(&view, &event);
    QVERIFY(!event.isAccepted());
}

QTEST_MAIN(MapViewWithoutApplicationTest)
#include "MapViewWithoutApplicationTest.moc"
