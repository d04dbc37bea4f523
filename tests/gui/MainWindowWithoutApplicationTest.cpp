#include <corvane/gui/MainWindow.h>

#include <QAction>
#include <QFile>
#include <QTemporaryDir>
#include <QToolBar>
#include <QtTest>

using Corvane::Gui::MainWindow;

/// A main window in a program whose application object is Qt's own: there is no settings store.
class MainWindowWithoutApplicationTest : public QObject
{
    Q_OBJECT
private slots:
    void toolBarsHaveTheirFirstLook();
    void aPreferenceIsOff();
    void theWindowHasItsFirstSizeAndKeepsNothing();

private:
    QString write(const QByteArray& content)
    {
        const QString path = folder.filePath("window.xml");
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() ? path
                                                                                        : QString();
    }

    QTemporaryDir folder;
};

void MainWindowWithoutApplicationTest::toolBarsHaveTheirFirstLook()
{
    MainWindow window;
    QString path = write("<gui><toolbar name=\"Map\"/></gui>");
    QVERIFY(window.buildToolBars(path));
    const auto* const bar = window.findChild<QToolBar*>("Map");
    QVERIFY(bar);
    QCOMPARE(bar->iconSize(), QSize(22, 22));
    QCOMPARE(bar->toolButtonStyle(), Qt::ToolButtonIconOnly);
}

void MainWindowWithoutApplicationTest::aPreferenceIsOff()
{
    MainWindow window;
    QString path = write("<actions><action name=\"Grid\" type=\"callback\" function=\"show\" "
                         "checkable=\"true\" pref=\"Map/Grid\"/></actions>");
    QVERIFY(window.loadActions(path));
    const auto* const action = window.findChild<QAction*>();
    QVERIFY(action);
    QVERIFY(action->isCheckable());
    QVERIFY(!action->isChecked());
}

void MainWindowWithoutApplicationTest::theWindowHasItsFirstSizeAndKeepsNothing()
{
    MainWindow window;
    window.setToolButtonStyle(Qt::ToolButtonTextOnly);
    window.setIconSize(QSize(5, 5));
    window.saveGuiPrefs();
    window.restoreGuiPrefs();
    QCOMPARE(window.size(), QSize(600, 400).expandedTo(window.sizeHint()));
    QCOMPARE(window.toolButtonStyle(), Qt::ToolButtonIconOnly);
    QCOMPARE(window.iconSize(), MainWindow().iconSize());
}

QTEST_MAIN(MainWindowWithoutApplicationTest)
#include "MainWindowWithoutApplicationTest.moc"
