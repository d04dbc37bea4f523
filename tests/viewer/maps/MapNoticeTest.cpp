#include <viewer/maps/MapNotice.h>
#include <viewer/maps/MapWindow.h>

#include <corvane/map/MapView.h>

#include <QLabel>
#include <QPushButton>
#include <QtTest>

using Corvane::Viewer::MapNotice;
using Corvane::Viewer::MapWindow;

/// How a notice fits the map that it stands over.
class MapNoticeTest : public QObject
{
    Q_OBJECT
private slots:
    void nothingIsClippedHoweverNarrowTheMapIs_data();
    void nothingIsClippedHoweverNarrowTheMapIs();
    void buttonsStandBesideTheTextWhereThereIsRoom();
};

namespace {

struct Shown
{
    Shown()
    {
        window.show();
        notice = new MapNotice(&window, "\"europe.tif\" is large and has no overviews, so showing "
                                        "much of it is slow.");
        notice->addButton("buildOverviews", "&Build Overviews");
        notice->addCloseButton("&Not Now");
        notice->addMenu("neverOverviews", "Ne&ver");
    }

    MapWindow window;
    MapNotice* notice; // the window's
};

} // namespace

void MapNoticeTest::nothingIsClippedHoweverNarrowTheMapIs_data()
{
    QTest::addColumn<int>("width");

    QTest::newRow("a window of its own") << 900;
    QTest::newRow("one of two side by side") << 400;
    QTest::newRow("one of many tiled") << 250;
}

void MapNoticeTest::nothingIsClippedHoweverNarrowTheMapIs()
{
    QFETCH(const int, width);
    Shown shown;

    shown.window.resize(width, 400);
    QTRY_COMPARE(shown.notice->width(), shown.window.getView()->width());

    const auto* const text = shown.notice->findChild<QLabel*>("noticeText");
    QTRY_VERIFY(text->height() >= text->heightForWidth(text->width()));
    for (const QPushButton* button : shown.notice->findChildren<QPushButton*>()) {
        QTRY_VERIFY2(button->isVisible() && button->width() >= button->sizeHint().width(),
                     qPrintable(button->text()));
        QTRY_VERIFY2(shown.notice->rect().contains(button->geometry()), qPrintable(button->text()));
    }
}

void MapNoticeTest::buttonsStandBesideTheTextWhereThereIsRoom()
{
    Shown shown;
    const auto* const text = shown.notice->findChild<QLabel*>("noticeText");
    const auto* const button = shown.notice->findChild<QPushButton*>("buildOverviews");

    shown.window.resize(400, 400);
    QTRY_VERIFY(button->y() >= text->geometry().bottom());

    shown.window.resize(900, 400);
    QTRY_VERIFY(button->x() >= text->geometry().right());
}

QTEST_MAIN(MapNoticeTest)
#include "MapNoticeTest.moc"
