#include <viewer/preferences/ColorScheme.h>
#include <viewer/frame/CommandKeys.h>
#include <viewer/frame/Folders.h>
#include <viewer/frame/Languages.h>
#include <viewer/maps/MapWindow.h>
#include <viewer/preferences/PreferencesDialog.h>
#include <viewer/batch/Startup.h>
#include <viewer/window/ViewerWindow.h>

#include <corvane/core/Application.h>
#include <corvane/gui/ColorButton.h>
#include <corvane/map/MapView.h>
#include <tests/support/EachInItsProcess.h>

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QKeySequenceEdit>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSettings>
#include <QSpinBox>
#include <QStyle>
#include <QTreeWidget>
#include <QtTest>

#include <memory>

using namespace Corvane;
using namespace Corvane::Viewer;

/// The preferences as a user meets them: from the command to the window that has changed.
class PreferencesTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void theProgramAndItsPluginsHavePages();
    void cancelKeepsEverything();

    void aNewKeyWorksAtOnceAndInTheNextWindow();
    void aKeyOfAnotherCommandIsTakenFromIt();
    void aKeyCanBeTakenAwayAndComeBack();
    void theSearchFindsCommandsAndKeys();

    void darkColorsAreTakenBack();
    void anUnknownSchemeIsThatOfTheDesktop();
    void theStyleChangesAtOnce();
    void theLanguageIsKeptForTheNextStart();
    void theConfigurationFollowsTheLanguage();

    void newMapsBeginAsTheUserLikes();

private:
    void show();
    void press(QDialogButtonBox::StandardButton button);
    template <typename Widget>
    Widget* find(const QString& name) const
    {
        return dialog->findChild<Widget*>(name);
    }
    void chooseCommand(const QString& name);
    QAction* action(const QString& name) const { return window->findChild<QAction*>(name); }
    static QSettings* settings() { return Application::instance()->getSettings(); }

    std::unique_ptr<ViewerWindow> window;
    PreferencesDialog* dialog = nullptr;
};

void PreferencesTest::init()
{
    for (const char* group : {"Viewer", "Gui/MainWindow", "Gui/MapView", "Plugins"}) {
        settings()->remove(group);
    }
    window = std::make_unique<ViewerWindow>();
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
}

void PreferencesTest::cleanup()
{
    window.reset();
}

void PreferencesTest::show()
{
    QTest::keyClick(window.get(), Qt::Key_Comma, Qt::ControlModifier);
    dialog = window->findChild<PreferencesDialog*>();
    QVERIFY(dialog);
    QVERIFY(QTest::qWaitForWindowExposed(dialog));
}

void PreferencesTest::press(QDialogButtonBox::StandardButton button)
{
    QTest::mouseClick(find<QDialogButtonBox>("buttonBox")->button(button), Qt::LeftButton);
}

void PreferencesTest::chooseCommand(const QString& name)
{
    const auto list = find<QTreeWidget>("shortcutsTreeWidget");
    const auto rows = list->findItems(name, Qt::MatchExactly);
    QCOMPARE(rows.size(), 1);
    list->setCurrentItem(rows.first());
}

void PreferencesTest::theProgramAndItsPluginsHavePages()
{
    show();
    QStringList names;
    const auto list = find<QListWidget>("pagesListWidget");
    for (int i = 0; i < list->count(); ++i) {
        names << list->item(i)->text();
    }
    QCOMPARE(names.mid(0, 3), QStringList({"Appearance", "Maps", "Shortcuts"}));
    for (const char* plugin : {"Raster images", "Web tiles", "Image servers", "Vector data"}) {
        QVERIFY2(names.contains(plugin), plugin);
    }
    list->setCurrentRow(names.indexOf("Web tiles"));
    QWidget* const page = find<QWidget>("webtilesBudgetPage");
    QVERIFY(page->isVisible());
    page->findChild<QSpinBox*>("memoryBudgetSpinBox")->setValue(300);
    page->findChild<QSpinBox*>("diskCacheSpinBox")->setValue(17);
    press(QDialogButtonBox::Apply);
    QCOMPARE(settings()->value("Plugins/WebTiles/MemoryBudgetMB").toInt(), 300);
    QCOMPARE(settings()->value("Plugins/WebTiles/DiskCacheMB").toInt(), 17);
    QVERIFY(dialog->isVisible());
    press(QDialogButtonBox::Ok);
    QVERIFY(!dialog->isVisible());
}

void PreferencesTest::cancelKeepsEverything()
{
    const QPalette before = QApplication::palette();
    show();
    find<QComboBox>("colorSchemeComboBox")->setCurrentIndex(2);
    find<QCheckBox>("animationCheckBox")->setChecked(false);
    chooseCommand("Quit");
    QTest::mouseClick(find<QPushButton>("clearShortcutButton"), Qt::LeftButton);
    press(QDialogButtonBox::Cancel);
    QCOMPARE(QApplication::palette(), before);
    QCOMPARE(action("actionQuit")->shortcut(), QKeySequence("Ctrl+Q"));
    QVERIFY(!settings()->contains("Gui/MapView/UseAnimation"));
    QVERIFY(!settings()->contains("Viewer/Shortcuts/actionQuit"));
}

void PreferencesTest::aNewKeyWorksAtOnceAndInTheNextWindow()
{
    show();
    chooseCommand("About");
    const auto field = find<QKeySequenceEdit>("shortcutEdit");
    QVERIFY(!find<QPushButton>("assignShortcutButton")->isEnabled());
    field->setKeySequence(QKeySequence("Ctrl+Alt+A"));
    find<QPushButton>("assignShortcutButton")->click();
    QVERIFY(field->keySequence().isEmpty());
    QVERIFY(action("actionAbout")->shortcut().isEmpty());
    press(QDialogButtonBox::Ok);
    QCOMPARE(action("actionAbout")->shortcut(), QKeySequence("Ctrl+Alt+A"));

    const ViewerWindow next;
    QCOMPARE(next.findChild<QAction*>("actionAbout")->shortcut(), QKeySequence("Ctrl+Alt+A"));
}

void PreferencesTest::aKeyOfAnotherCommandIsTakenFromIt()
{
    show();
    chooseCommand("About");
    find<QKeySequenceEdit>("shortcutEdit")->setKeySequence(QKeySequence("Ctrl+="));
    QCOMPARE(find<QLabel>("shortcutNoticeLabel")->text(),
             QString("Ctrl+= is the key of \"Zoom In\", which would lose it."));
    find<QPushButton>("assignShortcutButton")->click();
    QCOMPARE(find<QLabel>("shortcutNoticeLabel")->text(), QString());
    press(QDialogButtonBox::Ok);
    QCOMPARE(action("actionAbout")->shortcut(), QKeySequence("Ctrl+="));
    QCOMPARE(action("actionZoomIn")->shortcuts(), QList<QKeySequence>{QKeySequence("Ctrl++")});
}

void PreferencesTest::aKeyCanBeTakenAwayAndComeBack()
{
    show();
    chooseCommand("Quit");
    QVERIFY(!find<QPushButton>("resetShortcutButton")->isEnabled());
    find<QPushButton>("clearShortcutButton")->click();
    press(QDialogButtonBox::Apply);
    QVERIFY(action("actionQuit")->shortcuts().isEmpty());
    QVERIFY(ViewerWindow().findChild<QAction*>("actionQuit")->shortcuts().isEmpty());
    find<QPushButton>("resetShortcutButton")->click();
    press(QDialogButtonBox::Ok);
    QCOMPARE(action("actionQuit")->shortcut(), QKeySequence("Ctrl+Q"));
    QVERIFY(!settings()->contains("Viewer/Shortcuts/actionQuit"));
}

void PreferencesTest::theSearchFindsCommandsAndKeys()
{
    show();
    const auto list = find<QTreeWidget>("shortcutsTreeWidget");
    const auto shown = [list] {
        QStringList names;
        for (int i = 0; i < list->topLevelItemCount(); ++i) {
            if (!list->topLevelItem(i)->isHidden()) {
                names << list->topLevelItem(i)->text(0);
            }
        }
        return names;
    };
    const QStringList all = shown();
    find<QLineEdit>("shortcutSearchLineEdit")->setText("zoom in");
    QCOMPARE(shown(), QStringList("Zoom In"));
    find<QLineEdit>("shortcutSearchLineEdit")->setText("ctrl+q");
    QCOMPARE(shown(), QStringList("Quit"));
    find<QLineEdit>("shortcutSearchLineEdit")->clear();
    QCOMPARE(shown(), all);
}

void PreferencesTest::darkColorsAreTakenBack()
{
    const QColor usual = QApplication::palette().color(QPalette::Window);
    show();
    find<QComboBox>("colorSchemeComboBox")->setCurrentIndex(2);
    press(QDialogButtonBox::Apply);
    QVERIFY(window->palette().color(QPalette::Window).lightness() < 80);
    QVERIFY(window->palette().color(QPalette::WindowText).lightness() > 180);
    QCOMPARE(chosenColorScheme(), QString("dark"));
    find<QComboBox>("colorSchemeComboBox")->setCurrentIndex(1);
    press(QDialogButtonBox::Apply);
    QVERIFY(window->palette().color(QPalette::Window).lightness() > 200);
    find<QComboBox>("colorSchemeComboBox")->setCurrentIndex(0);
    press(QDialogButtonBox::Apply);
    QCOMPARE(QApplication::palette().color(QPalette::Window), usual);
}

void PreferencesTest::anUnknownSchemeIsThatOfTheDesktop()
{
    settings()->setValue("Viewer/colorScheme", "purple");
    QCOMPARE(chosenColorScheme(), QString("desktop"));
}

void PreferencesTest::theStyleChangesAtOnce()
{
    const QString before = QApplication::style()->objectName();
    const QString other = before == "windows" ? "fusion" : "windows";
    show();
    const auto styles = find<QComboBox>("styleComboBox");
    QCOMPARE(styles->currentText().toLower(), before);
    styles->setCurrentIndex(styles->findText(other, Qt::MatchFixedString));
    press(QDialogButtonBox::Apply);
    QCOMPARE(QApplication::style()->objectName(), other);
    styles->setCurrentIndex(styles->findText(before, Qt::MatchFixedString));
    press(QDialogButtonBox::Ok);
    QCOMPARE(QApplication::style()->objectName(), before);
}

void PreferencesTest::theLanguageIsKeptForTheNextStart()
{
    show();
    const auto box = find<QComboBox>("languageComboBox");
    QCOMPARE(box->itemText(2), QString("Deutsch"));
    box->setCurrentIndex(2);
    QCOMPARE(find<QLabel>("languageNoticeLabel")->text(),
             QString("The language changes when the program starts again."));
    press(QDialogButtonBox::Ok);
    QCOMPARE(spokenLanguage().code, QString("de"));
    chooseLanguage("tlh");
    QCOMPARE(spokenLanguage().code, QString("en"));
}

void PreferencesTest::theConfigurationFollowsTheLanguage()
{
    chooseLanguage("en");
    QVERIFY(configFile("actions.xml").endsWith("/config/english/actions.xml"));
    chooseLanguage("de");
    QVERIFY(configFile("nothing.xml").endsWith("/config/english/nothing.xml"));
}

void PreferencesTest::newMapsBeginAsTheUserLikes()
{
    show();
    find<Gui::ColorButton>("backgroundButton")->setColor(QColor(1, 2, 3));
    find<QCheckBox>("crosshairCheckBox")->setChecked(true);
    press(QDialogButtonBox::Ok);
    Map::MapView* const view = window->addMapWindow()->getView();
    QCOMPARE(view->getBackgroundColor(), QColor(1, 2, 3));
    QVERIFY(view->getDrawCrosshair());
}

int main(int argc, char** argv)
{
    setUpLogging(false);
    Application application(argc, argv, "Corvane Viewer Test");
    PreferencesTest test;
    return runEachInItsProcess(test, argc, argv); // the window ends the plugins
}
#include "PreferencesTest.moc"
