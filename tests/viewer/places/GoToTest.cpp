#include <tests/viewer/support/ReferencedLayer.h>

#include <viewer/places/GoToDialog.h>
#include <viewer/maps/MapWindow.h>
#include <viewer/places/PlaceMark.h>
#include <viewer/window/ViewerWindow.h>

#include <corvane/core/Application.h>
#include <corvane/map/MapView.h>
#include <tests/support/EachInItsProcess.h>

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <memory>

using namespace Corvane;
using namespace Corvane::Viewer;

class GoToTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void theKeyOpensTheDialogOverTheMap();
    void withoutAMapThereIsNowhereToGo();
    void theDialogSaysWhatItUnderstands_data();
    void theDialogSaysWhatItUnderstands();
    void enterMovesTheMapAndMarksThePlace();
    void theScaleStays();
    void aPlaceThatIsNotUnderstoodKeepsTheDialog();
    void whatWasGoneToIsKept();
    void theMarkStaysWithItsPlaceAndGoes();
    void aDialogClosesWithItsMap();
    void anotherMapClosesTheDialog();

private:
    MapWindow* addMap(const QString& reference);
    GoToDialog* ask();
    static void write(GoToDialog* dialog, const QString& text)
    {
        auto* const edit = dialog->findChild<QComboBox*>("coordinateEdit");
        edit->lineEdit()->selectAll();
        QTest::keyClicks(edit, text);
    }
    static QString understood(const GoToDialog* dialog)
    {
        return dialog->findChild<QLabel*>("understoodLabel")->text();
    }

    std::unique_ptr<ViewerWindow> window;
};

void GoToTest::init()
{
    Application::instance()->getSettings()->clear();
    Application::instance()->getSettings()->setValue("Gui/MapView/UseAnimation", false);
    window = std::make_unique<ViewerWindow>();
    window->resize(900, 700);
    window->show();
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
}

void GoToTest::cleanup()
{
    window.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

/// One unit a pixel; its layer covers a square kilometre of zone 33.
MapWindow* GoToTest::addMap(const QString& reference)
{
    MapWindow* const map = window->addMapWindow();
    auto* const layer = new ReferencedLayer(reference);
    layer->setDescription("Gate");
    layer->bounds = QRectF(QPointF(389000.0, 5820000.0), QPointF(390000.0, 5819000.0));
    layer->size = QSize(1000, 1000);
    map->getView()->addLayer(layer);
    return map;
}

GoToDialog* GoToTest::ask()
{
    window->findChild<QAction*>("actionGoTo")->trigger();
    return window->findChild<GoToDialog*>();
}

void GoToTest::theKeyOpensTheDialogOverTheMap()
{
    MapWindow* const map = addMap("EPSG:25833");
    map->getView()->setFocus();
    QTest::keyClick(map->getView(), Qt::Key_G, Qt::ControlModifier);
    GoToDialog* const dialog = window->findChild<GoToDialog*>();
    QVERIFY(dialog && dialog->isVisible());
    QVERIFY(!dialog->isModal());
    QCOMPARE(dialog->windowTitle(), QString("Go to Coordinate"));
    QTest::keyClick(map->getView(), Qt::Key_G, Qt::ControlModifier);
    QCOMPARE(window->findChildren<GoToDialog*>().size(), 1);
    QTest::keyClick(dialog, Qt::Key_Escape);
    QVERIFY(!dialog->isVisible());
}

void GoToTest::withoutAMapThereIsNowhereToGo()
{
    QVERIFY(!window->findChild<QAction*>("actionGoTo")->isEnabled());
    MapWindow* const map = addMap("");
    QVERIFY(window->findChild<QAction*>("actionGoTo")->isEnabled());
    map->close();
    QTRY_VERIFY(!window->findChild<QAction*>("actionGoTo")->isEnabled());
}

void GoToTest::theDialogSaysWhatItUnderstands_data()
{
    QTest::addColumn<QString>("reference");
    QTest::addColumn<QString>("written");
    QTest::addColumn<QString>("explanation");
    QTest::addColumn<bool>("canGo");

    const auto utf8 = [](const char* source) { return QString::fromUtf8(source); };
    const char* const utm = "EPSG:25833";
    QTest::newRow("nothing yet") << utm << ""
                                 << "" << false;
    QTest::newRow("degrees") << utm << "52.5163, 13.3777"
                             << utf8("52° 30' 58.680\" N  13° 22' 39.720\" E (WGS 84)") << true;
    QTest::newRow("degrees elsewhere")
        << utm << "48.2, 16.4"
        << utf8("48° 12' 00.000\" N  16° 24' 00.000\" E (WGS 84), outside of all layers") << true;
    QTest::newRow("degrees of nowhere")
        << ""
        << "52.5N 13.4E"
        << utf8("The map has no reference that tells where 52° 30' 00.000\" N  13° 24' 00.000\" E "
                "is.")
        << false;
    QTest::newRow("degrees out of reach")
        << "+proj=gnom +lat_0=90 +datum=WGS84 +type=crs"
        << "-45, 13" << utf8("unknown does not reach 45° 00' 00.000\" S  13° 00' 00.000\" E.")
        << false;
    QTest::newRow("the map's own") << utm << "389500 5819500"
                                   << "X: 389500.00, Y: 5819500.00 in EPSG:25833" << true;
    QTest::newRow("the map's own without a reference")
        << ""
        << "389500 5819500"
        << "X: 389500.00, Y: 5819500.00 of the map" << true;
    QTest::newRow("a cell") << utm << "col 100 row 200"
                            << "Column 100, row 200 of Gate" << true;
    QTest::newRow("a cell beyond the raster")
        << utm << "col 1000 row 200"
        << "Gate has columns 0 to 999 and rows 0 to 999." << false;
    QTest::newRow("a mistake")
        << utm << "here"
        << "This is no coordinate: two numbers, latitude and longitude, or column and row are "
           "wanted."
        << false;
}

void GoToTest::theDialogSaysWhatItUnderstands()
{
    QFETCH(QString, reference);
    QFETCH(QString, written);
    addMap(reference);
    GoToDialog* const dialog = ask();
    write(dialog, written);
    QTEST(understood(dialog), "explanation");
    QTEST(dialog->findChild<QPushButton*>("goButton")->isEnabled(), "canGo");
}

void GoToTest::enterMovesTheMapAndMarksThePlace()
{
    Map::MapView* const view = addMap("EPSG:25833")->getView();
    GoToDialog* const dialog = ask();
    write(dialog, "52.5163, 13.3777");
    QTest::keyClick(dialog->findChild<QComboBox*>("coordinateEdit"), Qt::Key_Return);
    QVERIFY(!dialog->isVisible());
    const QPointF place(389917.8326, 5819701.9189);
    QVERIFY(QLineF(view->getBounds().center(), place).length() < 0.01);
    auto* const mark = view->findChild<PlaceMark*>();
    QVERIFY(mark && mark->isVisible());
    QVERIFY(QLineF(mark->getPlace(), place).length() < 0.01);

    GoToDialog* const next = ask();
    write(next, "col 100 row 200");
    next->findChild<QPushButton*>("goButton")->click();
    QVERIFY(QLineF(view->getBounds().center(), QPointF(389100.5, 5819799.5)).length() < 0.01);
    QCOMPARE(view->findChildren<PlaceMark*>().size(), 1); // one at a time
}

void GoToTest::theScaleStays()
{
    Map::MapView* const view = addMap("EPSG:25833")->getView();
    const QSizeF before = view->getBounds().size();
    GoToDialog* const dialog = ask();
    write(dialog, "400000 5800000");
    dialog->accept();
    QVERIFY(std::abs(view->getBounds().width() - before.width()) < 1e-6);
    QVERIFY(std::abs(view->getBounds().height() - before.height()) < 1e-6);
}

void GoToTest::aPlaceThatIsNotUnderstoodKeepsTheDialog()
{
    Map::MapView* const view = addMap("EPSG:25833")->getView();
    const QRectF before = view->getBounds();
    GoToDialog* const dialog = ask();
    write(dialog, "somewhere");
    QTest::keyClick(dialog->findChild<QComboBox*>("coordinateEdit"), Qt::Key_Return);
    dialog->accept();
    QVERIFY(dialog->isVisible());
    QCOMPARE(view->getBounds(), before);
    QVERIFY(!view->findChild<PlaceMark*>());
}

void GoToTest::whatWasGoneToIsKept()
{
    addMap("EPSG:25833");
    for (int i = 0; i < 14; ++i) {
        GoToDialog* const dialog = ask();
        write(dialog, QStringLiteral("389000 58190%1").arg(i, 2, 10, QLatin1Char('0')));
        dialog->accept();
        QCoreApplication::sendPostedEvents(dialog, QEvent::DeferredDelete);
    }
    GoToDialog* const again = ask();
    write(again, "389000 5819010");
    again->accept();
    QCoreApplication::sendPostedEvents(again, QEvent::DeferredDelete);

    const auto* const edit = ask()->findChild<QComboBox*>("coordinateEdit");
    QCOMPARE(edit->count(), 12);
    QCOMPARE(edit->itemText(0), QString("389000 5819010")); // the last one first, once
    QCOMPARE(edit->itemText(1), QString("389000 5819013"));
    QCOMPARE(edit->findText("389000 5819010"), 0);
    QCOMPARE(edit->currentText(), QString("389000 5819010"));
    QCOMPARE(edit->lineEdit()->selectedText(), edit->currentText());
}

void GoToTest::theMarkStaysWithItsPlaceAndGoes()
{
    Map::MapView* const view = addMap("EPSG:25833")->getView();
    const QPointF place(389500.0, 5819500.0);
    const QPointer<PlaceMark> mark = PlaceMark::showAt(view, place);
    QCOMPARE(mark->geometry(), view->rect());
    view->setBounds(389500.0, 5819500.0, 389500.0 + view->width() - 1,
                    5819500.0 - view->height() + 1);
    QVERIFY(mark->toDevice(place).manhattanLength() < 1e-6);
    QVERIFY(QLineF(mark->toWorld(QPointF(0.0, 0.0)), place).length() < 1e-6);
    QVERIFY(QLineF(mark->toDevice(mark->toWorld(QPointF(7.25, 9.5))), QLineF(0, 0, 7.25, 9.5).p2())
                .length() < 1e-6);
    QVERIFY(view->grab(QRect(0, 0, 30, 30)).toImage().pixelColor(18, 0).red() > 180);

    window->resize(700, 600);
    QTRY_VERIFY(!mark || mark->geometry() == view->rect()); // it may be gone on a slow machine
    QTRY_VERIFY_WITH_TIMEOUT(!mark, 60000);
}

void GoToTest::aDialogClosesWithItsMap()
{
    MapWindow* const map = addMap("EPSG:25833");
    const QPointer<GoToDialog> dialog = ask();
    PlaceMark::showAt(map->getView(), QPointF(389500.0, 5819500.0));
    map->close();
    QTRY_VERIFY(!dialog);
}

void GoToTest::anotherMapClosesTheDialog()
{
    addMap("EPSG:25833");
    const QPointer<GoToDialog> dialog = ask();
    addMap("EPSG:25833");
    QTRY_VERIFY(!dialog);
}

int main(int argc, char** argv)
{
    QTemporaryDir settings;
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
    Application application(argc, argv, "Corvane Viewer Test");
    GoToTest test;
    return runEachInItsProcess(test, argc, argv); // the window ends the plugins
}
#include "GoToTest.moc"
