#include <corvane/gui/MapProperties.h>

#include <corvane/core/Application.h>
#include <corvane/map/MapCanvas.h>
#include <corvane/map/MapView.h>
#include <tests/gui/DialogAnswers.h>
#include <tests/gui/PanelPictures.h>

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFrame>
#include <QGroupBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using namespace Corvane;
using namespace Corvane::Tests;
using Gui::MapProperties;

namespace {

const QColor red(255, 0, 0);
const QColor cyan(0, 255, 255);
const QColor sand(230, 220, 180, 128);

} // namespace

class MapPropertiesTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void theFormStandsAsItShould();
    void theSlotsAreFoundByName();
    void theGridHasThreeRows();
    void theTabKeyGoesDownTheRows();
    void theMapsSettingsAreShown();
    void aSwatchDoesNotShowAlpha();
    void withoutAViewThereIsNoBackground();

    void thePickersOpenOnTheirColours_data();
    void thePickersOpenOnTheirColours();
    void aPickedColourIsShownAndStaysInTheDialog();
    void aPickerOpensOnWhatWasPickedBefore();
    void aCancelledPickerChangesNothing();

    void okWritesEverything();
    void okWritesWhatNobodyChanged();
    void cancelLeavesTheMap();
    void escapeLeavesTheMap();
    void checkBoxesAreReadAtTheEndOnly();
    void aMapThatGoesLeavesAnEmptyHandedDialog();

    void picturesOfTheDialog();

private:
    template <typename Widget>
    Widget* find(const char* name) const
    {
        return dialog->findChild<Widget*>(name);
    }
    QString swatch(const char* name) const { return find<QFrame>(name)->styleSheet(); }
    void click(QDialogButtonBox::StandardButton button) const
    {
        QTest::mouseClick(find<QDialogButtonBox>("buttonBox")->button(button), Qt::LeftButton);
    }
    void pick(const char* button, const QColor& color)
    {
        answers->expectColor(color);
        QTest::mouseClick(find<QPushButton>(button), Qt::LeftButton);
    }
    Map::MapCanvas& canvas() const { return *view->getMapCanvas(); }
    /// What the dialog can change, in one line.
    QString mapState() const
    {
        return QStringList({canvas().getComments(), canvas().getDrawMapBBox() ? "map" : "-",
                            canvas().getMapBBoxColor().name(QColor::HexArgb),
                            canvas().getDrawLayerBBox() ? "layers" : "-",
                            canvas().getLayerBBoxColor().name(QColor::HexArgb),
                            view->getBackgroundColor().name(QColor::HexArgb)})
            .join(' ');
    }

    std::unique_ptr<Map::MapView> view;
    std::unique_ptr<MapProperties> dialog;
    std::unique_ptr<DialogAnswers> answers;
};

void MapPropertiesTest::init()
{
    view = std::make_unique<Map::MapView>();
    QColor background = sand;
    view->setBackgroundColor(background);
    canvas().setComments("First line\nsecond line");
    canvas().setDrawLayerBBox(true);
    dialog = std::make_unique<MapProperties>(view->getMapCanvas(), nullptr);
    dialog->show();
    answers = std::make_unique<DialogAnswers>();
}

void MapPropertiesTest::cleanup()
{
    QVERIFY(answers->isDone());
    answers.reset();
    dialog.reset();
    view.reset();
}

void MapPropertiesTest::theFormStandsAsItShould()
{
    QCOMPARE(dialog->windowTitle(), QString("MapProperties"));
    QCOMPARE(MapProperties(&canvas(), nullptr).size(), QSize(578, 462));
    QCOMPARE(find<QGroupBox>("groupBox")->title(), QString("Map Properties"));
    QCOMPARE(find<QLabel>("label_2")->text(), QString("Comments"));
    QCOMPARE(find<QDialogButtonBox>("buttonBox")->standardButtons(),
             QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    const int comments = find<QPlainTextEdit>("textEditComments")->y();
    QVERIFY(find<QGroupBox>("groupBox")->y() < find<QLabel>("label_2")->y());
    QVERIFY(find<QLabel>("label_2")->y() < comments);
    QVERIFY(comments < find<QDialogButtonBox>("buttonBox")->y());

    QWidget parent;
    QCOMPARE(MapProperties(&canvas(), &parent).parentWidget(), &parent);
}

void MapPropertiesTest::theSlotsAreFoundByName()
{
    const QMetaObject& type = MapProperties::staticMetaObject;
    QStringList methods;
    for (int i = type.methodOffset(); i < type.methodCount(); ++i) {
        QCOMPARE(type.method(i).methodType(), QMetaMethod::Slot);
        QCOMPARE(type.method(i).access(), QMetaMethod::Public);
        methods << type.method(i).methodSignature();
    }
    QCOMPARE(methods, QStringList({"accept()", "reject()"}));
}

void MapPropertiesTest::theGridHasThreeRows()
{
    QLabel* background = nullptr;
    for (QLabel* label : find<QGroupBox>("groupBox")->findChildren<QLabel*>()) {
        background = label->text() == "Map background color" ? label : background;
    }
    QVERIFY(background);
    QCOMPARE(find<QCheckBox>("checkBoxDrawMapBBox")->text(), QString("Draw map bounding box"));
    QCOMPARE(find<QCheckBox>("checkBoxDrawLayerBBox")->text(),
             QString("Draw layer bounding boxes"));
    const QList<QList<QWidget*>> rows = {
        {find<QCheckBox>("checkBoxDrawMapBBox"), find<QFrame>("frameMapBBoxColor"),
         find<QPushButton>("buttonMapBBoxColor")},
        {find<QCheckBox>("checkBoxDrawLayerBBox"), find<QFrame>("frameLayerBBoxColor"),
         find<QPushButton>("buttonLayerBBoxColor")},
        {background, find<QFrame>("frameMapBgColor"), find<QPushButton>("buttonMapBgColor")}};
    int y = 0;
    for (const QList<QWidget*>& row : rows) {
        QVERIFY(row.at(2)->geometry().center().y() > y);
        y = row.at(2)->geometry().center().y();
        QVERIFY(row.at(0)->x() < row.at(1)->x());
        QVERIFY(row.at(1)->x() < row.at(2)->x());
        QVERIFY(qAbs(row.at(0)->geometry().center().y() - y) <= 1);
        QVERIFY(qAbs(row.at(1)->geometry().center().y() - y) <= 1);
        auto* const frame = qobject_cast<QFrame*>(row.at(1));
        QCOMPARE(frame->frameShape(), QFrame::Box);
        QCOMPARE(frame->frameShadow(), QFrame::Plain);
        QCOMPARE(frame->minimumSize(), QSize(30, 0));
        QCOMPARE(frame->maximumSize(), QSize(100, 16777215));
        QCOMPARE(qobject_cast<QPushButton*>(row.at(2))->text(), QString("Color..."));
    }
}

void MapPropertiesTest::theTabKeyGoesDownTheRows()
{
    QVERIFY(QTest::qWaitForWindowActive(dialog.get()));
    find<QCheckBox>("checkBoxDrawMapBBox")->setFocus();
    for (const char* name : {"checkBoxDrawMapBBox", "buttonMapBBoxColor", "checkBoxDrawLayerBBox",
                             "buttonLayerBBoxColor", "buttonMapBgColor", "textEditComments"})
    {
        QCOMPARE(QApplication::focusWidget()->objectName(), QString(name));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
}

void MapPropertiesTest::theMapsSettingsAreShown()
{
    QVERIFY(!find<QCheckBox>("checkBoxDrawMapBBox")->isChecked());
    QVERIFY(find<QCheckBox>("checkBoxDrawLayerBBox")->isChecked());
    QCOMPARE(find<QPlainTextEdit>("textEditComments")->toPlainText(),
             QString("First line\nsecond line"));
    QCOMPARE(swatch("frameMapBBoxColor"), QString("background-color: rgb(255, 0, 0);"));
    QCOMPARE(swatch("frameLayerBBoxColor"), QString("background-color: rgb(0, 255, 255);"));
    QCOMPARE(swatch("frameMapBgColor"), QString("background-color: rgb(230, 220, 180);"));
    const QImage shown = dialog->grab().toImage();
    const QFrame* frame = find<QFrame>("frameMapBgColor");
    QCOMPARE(shown.pixelColor(frame->mapTo(dialog.get(), frame->rect().center())),
             QColor(230, 220, 180));
}

void MapPropertiesTest::aSwatchDoesNotShowAlpha()
{
    pick("buttonLayerBBoxColor", QColor(1, 2, 3, 4));
    QCOMPARE(swatch("frameLayerBBoxColor"), QString("background-color: rgb(1, 2, 3);"));
}

void MapPropertiesTest::withoutAViewThereIsNoBackground()
{
    Map::MapCanvas alone(nullptr);
    dialog = std::make_unique<MapProperties>(&alone, nullptr);
    dialog->show();
    QCOMPARE(swatch("frameMapBgColor"), QString());
    QCOMPARE(swatch("frameMapBBoxColor"), QString("background-color: rgb(255, 0, 0);"));
    find<QCheckBox>("checkBoxDrawMapBBox")->setChecked(true);
    click(QDialogButtonBox::Ok);
    QVERIFY(alone.getDrawMapBBox());
    QCOMPARE(dialog->result(), int(QDialog::Accepted));
}

void MapPropertiesTest::thePickersOpenOnTheirColours_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("opensOn");
    QTest::newRow("the map's box") << "buttonMapBBoxColor"
                                   << "#ffff0000";
    QTest::newRow("the layers' boxes") << "buttonLayerBBoxColor"
                                       << "#ff00ffff";
    QTest::newRow("the background, on the colour of the map's box") << "buttonMapBgColor"
                                                                    << "#ffff0000";
}

void MapPropertiesTest::thePickersOpenOnTheirColours()
{
    QFETCH(QString, button);
    QFETCH(QString, opensOn);
    pick(qPrintable(button), QColor());
    QCOMPARE(answers->shown, QStringList("color " + opensOn + " Select Color on MapProperties"));
}

void MapPropertiesTest::aPickedColourIsShownAndStaysInTheDialog()
{
    const QString before = mapState();
    pick("buttonMapBBoxColor", QColor(1, 2, 3));
    pick("buttonLayerBBoxColor", QColor(4, 5, 6));
    pick("buttonMapBgColor", QColor(7, 8, 9));
    QCOMPARE(swatch("frameMapBBoxColor"), QString("background-color: rgb(1, 2, 3);"));
    QCOMPARE(swatch("frameLayerBBoxColor"), QString("background-color: rgb(4, 5, 6);"));
    QCOMPARE(swatch("frameMapBgColor"), QString("background-color: rgb(7, 8, 9);"));
    QCOMPARE(mapState(), before);
}

void MapPropertiesTest::aPickerOpensOnWhatWasPickedBefore()
{
    pick("buttonMapBBoxColor", QColor(1, 2, 3));
    pick("buttonMapBBoxColor", QColor());
    pick("buttonMapBgColor", QColor(7, 8, 9));
    pick("buttonMapBgColor", QColor());
    QCOMPARE(answers->shown, QStringList({"color #ffff0000 Select Color on MapProperties",
                                          "color #ff010203 Select Color on MapProperties",
                                          "color #ff010203 Select Color on MapProperties",
                                          "color #ff010203 Select Color on MapProperties"}));
}

void MapPropertiesTest::aCancelledPickerChangesNothing()
{
    for (const char* button : {"buttonMapBBoxColor", "buttonLayerBBoxColor", "buttonMapBgColor"}) {
        pick(button, QColor());
    }
    QCOMPARE(swatch("frameMapBBoxColor"), QString("background-color: rgb(255, 0, 0);"));
    QCOMPARE(swatch("frameLayerBBoxColor"), QString("background-color: rgb(0, 255, 255);"));
    QCOMPARE(swatch("frameMapBgColor"), QString("background-color: rgb(230, 220, 180);"));
    click(QDialogButtonBox::Ok);
    QCOMPARE(canvas().getMapBBoxColor(), red);
    QCOMPARE(canvas().getLayerBBoxColor(), cyan);
    QCOMPARE(view->getBackgroundColor(), sand);
}

void MapPropertiesTest::okWritesEverything()
{
    QTest::mouseClick(find<QCheckBox>("checkBoxDrawMapBBox"), Qt::LeftButton, Qt::NoModifier,
                      QPoint(5, find<QCheckBox>("checkBoxDrawMapBBox")->height() / 2));
    QTest::mouseClick(find<QCheckBox>("checkBoxDrawLayerBBox"), Qt::LeftButton, Qt::NoModifier,
                      QPoint(5, find<QCheckBox>("checkBoxDrawLayerBBox")->height() / 2));
    pick("buttonMapBBoxColor", QColor(1, 2, 3));
    pick("buttonLayerBBoxColor", QColor(4, 5, 6));
    pick("buttonMapBgColor", QColor(7, 8, 9));
    find<QPlainTextEdit>("textEditComments")->clear();
    QTest::keyClicks(find<QPlainTextEdit>("textEditComments"), "typed");
    click(QDialogButtonBox::Ok);
    QCOMPARE(mapState(), QString("typed map #ff010203 - #ff040506 #ff070809"));
    QCOMPARE(dialog->result(), int(QDialog::Accepted));
    QVERIFY(!dialog->isVisible());
}

// What has changed behind the dialog is written over with what the dialog holds.
void MapPropertiesTest::okWritesWhatNobodyChanged()
{
    const QString before = mapState();
    canvas().setComments("other");
    canvas().setDrawMapBBox(true);
    canvas().setMapBBoxColor(Qt::black);
    canvas().setDrawLayerBBox(false);
    canvas().setLayerBBoxColor(Qt::black);
    QColor black(Qt::black);
    view->setBackgroundColor(black);
    click(QDialogButtonBox::Ok);
    QCOMPARE(mapState(), before);
}

void MapPropertiesTest::cancelLeavesTheMap()
{
    const QString before = mapState();
    find<QCheckBox>("checkBoxDrawMapBBox")->setChecked(true);
    pick("buttonMapBBoxColor", QColor(1, 2, 3));
    pick("buttonMapBgColor", QColor(7, 8, 9));
    find<QPlainTextEdit>("textEditComments")->setPlainText("lost");
    click(QDialogButtonBox::Cancel);
    QCOMPARE(mapState(), before);
    QCOMPARE(dialog->result(), int(QDialog::Rejected));
    QVERIFY(!dialog->isVisible());
}

void MapPropertiesTest::escapeLeavesTheMap()
{
    const QString before = mapState();
    find<QCheckBox>("checkBoxDrawMapBBox")->setChecked(true);
    QTest::keyClick(dialog.get(), Qt::Key_Escape);
    QCOMPARE(mapState(), before);
    QVERIFY(!dialog->isVisible());
}

void MapPropertiesTest::checkBoxesAreReadAtTheEndOnly()
{
    find<QCheckBox>("checkBoxDrawMapBBox")->click();
    QVERIFY(!canvas().getDrawMapBBox());
    click(QDialogButtonBox::Ok);
    QVERIFY(canvas().getDrawMapBBox());
}

void MapPropertiesTest::aMapThatGoesLeavesAnEmptyHandedDialog()
{
    view.reset();
    click(QDialogButtonBox::Ok);
    QCOMPARE(dialog->result(), int(QDialog::Accepted));
}

void MapPropertiesTest::picturesOfTheDialog()
{
    QCOMPARE(takePictures(*dialog, "MapProperties").join("; "), QString());
}

int main(int argc, char** argv)
{
    QTemporaryDir store;
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, store.path());
    Application application(argc, argv, "MapPropertiesTest");
    MapPropertiesTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "MapPropertiesTest.moc"
