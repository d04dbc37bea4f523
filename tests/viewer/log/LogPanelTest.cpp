#include <viewer/maps/DocumentThreads.h>
#include <viewer/log/LogBook.h>
#include <viewer/log/LogPanel.h>
#include <viewer/batch/Startup.h>

#include <corvane/core/Application.h>

#include <QClipboard>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollBar>
#include <QSettings>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QToolButton>
#include <QTreeView>
#include <QtTest>

#include <memory>

using namespace Corvane;
using namespace Corvane::Viewer;

class LogPanelTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void linesThatWereThereBeforeAreShown();
    void linesOfAnotherThreadAreShown();
    void theLevelFiltersAndIsKept();
    void debugLinesAreKeptOnceTheyAreAskedFor();
    void theSearchFiltersAndMarks();
    void aPausedPanelStandsStill();
    void thePanelFollowsTheNewestLine();
    void clearingTakesAllLinesOut();
    void onlyTheLastLinesStay();
    void chosenLinesAreCopied();
    void ctrlCCopiesWholeLines();
    void aMessageOfSeveralLinesIsOneRow();
    void theLogIsSaved();
    void aFailureToSaveIsTold();
    void aPanelWithoutABookIsEmpty();
    void everyControlCanBeReachedByKeyboard();

private:
    template <typename T>
    T* find(const char* name) const
    {
        return panel->findChild<T*>(name);
    }
    void log(const QString& text, LogLevel level = Warning)
    {
        book->logMessage(text, level, QDateTime(QDate(2024, 5, 6), QTime(12, 30, 1, 250)));
    }
    QStringList shown() const
    {
        const QAbstractItemModel* const model = find<QTreeView>("logView")->model();
        QStringList texts;
        for (int row = 0; row < model->rowCount(); ++row) {
            texts << model->index(row, 2).data().toString();
        }
        return texts;
    }
    void chooseLevel(int row)
    {
        auto* const levels = find<QComboBox>("logLevelComboBox");
        levels->setFocus();
        levels->setCurrentIndex(row);
        emit levels->activated(row);
    }
    void saveAs(const QString& file);

    QTemporaryDir folder;
    std::unique_ptr<LogBook> book;
    std::unique_ptr<LogPanel> panel;
};

void LogPanelTest::init()
{
    Application::instance()->getSettings()->clear();
    book = std::make_unique<LogBook>(nullptr);
    panel = std::make_unique<LogPanel>(book.get());
    panel->resize(700, 300);
    panel->show();
    QVERIFY(QTest::qWaitForWindowActive(panel.get()));
}

void LogPanelTest::cleanup()
{
    panel.reset();
    book.reset();
}

void LogPanelTest::linesThatWereThereBeforeAreShown()
{
    log("one");
    log("two", Error);
    panel = std::make_unique<LogPanel>(book.get());
    QCOMPARE(shown(), QStringList({"one", "two"}));
    const QAbstractItemModel* const model = find<QTreeView>("logView")->model();
    QCOMPARE(model->index(0, 0).data().toString(), QString("12:30:01.250"));
    QCOMPARE(model->index(0, 1).data().toString(), QString("Warning"));
    QCOMPARE(model->index(1, 1).data().toString(), QString("Error"));
    QVERIFY(!model->index(1, 1).data(Qt::DecorationRole).value<QIcon>().isNull());
}

void LogPanelTest::linesOfAnotherThreadAreShown()
{
    const std::unique_ptr<QThread> thread(QThread::create([this] { log("from afar"); }));
    thread->start();
    QVERIFY(thread->wait());
    QTRY_COMPARE(shown(), QStringList("from afar"));
}

void LogPanelTest::theLevelFiltersAndIsKept()
{
    log("told", Information);
    log("warned", Warning);
    log("failed", Error);
    log("broken", Critical);
    QTRY_COMPARE(shown(), QStringList({"told", "warned", "failed", "broken"}));
    chooseLevel(2);
    QCOMPARE(shown(), QStringList({"warned", "failed", "broken"}));
    chooseLevel(3);
    QCOMPARE(shown(), QStringList({"failed", "broken"}));
    panel = std::make_unique<LogPanel>(book.get());
    QCOMPARE(shown(), QStringList({"failed", "broken"}));
    QCOMPARE(find<QComboBox>("logLevelComboBox")->currentText(), QString("Error"));
    chooseLevel(1);
    QCOMPARE(shown(), QStringList({"told", "warned", "failed", "broken"})); // kept all the time
}

void LogPanelTest::debugLinesAreKeptOnceTheyAreAskedFor()
{
    QCOMPARE(book->getLogLevel(), Information);
    chooseLevel(0);
    QCOMPARE(book->getLogLevel(), Debug);
    log("detail", Debug);
    QTRY_COMPARE(shown(), QStringList("detail"));
    chooseLevel(2);
    QCOMPARE(book->getLogLevel(), Information);
    QCOMPARE(shown(), QStringList());
}

void LogPanelTest::theSearchFiltersAndMarks()
{
    log("Cannot open a.tif");
    log("opened b.tif, and again B.TIF");
    log("done");
    QTRY_COMPARE(shown().size(), 3);
    auto* const list = find<QTreeView>("logView");
    const auto yellow = [list] {
        const QImage picture = list->viewport()->grab().toImage();
        int count = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                count += picture.pixelColor(x, y) == QColor(255, 220, 90) ? 1 : 0;
            }
        }
        return count;
    };
    QCOMPARE(yellow(), 0);
    QTest::keyClicks(find<QLineEdit>("logSearchLineEdit"), "B.tif");
    QCOMPARE(shown(), QStringList("opened b.tif, and again B.TIF"));
    QVERIFY(yellow() > 50);
    QTest::keyClicks(find<QLineEdit>("logSearchLineEdit"), "x");
    QCOMPARE(shown(), QStringList());
    find<QLineEdit>("logSearchLineEdit")->clear();
    QCOMPARE(shown().size(), 3);
    QCOMPARE(yellow(), 0);
}

void LogPanelTest::aPausedPanelStandsStill()
{
    QTest::mouseClick(find<QToolButton>("logPauseButton"), Qt::LeftButton);
    log("meanwhile");
    QSignalSpy came(book.get(), &LogBook::linesCame);
    QTRY_COMPARE(came.count(), 1);
    QCOMPARE(shown(), QStringList());
    QTest::mouseClick(find<QToolButton>("logPauseButton"), Qt::LeftButton);
    QCOMPARE(shown(), QStringList("meanwhile"));
}

void LogPanelTest::thePanelFollowsTheNewestLine()
{
    auto* const list = find<QTreeView>("logView");
    const auto isAtEnd = [list] {
        return list->verticalScrollBar()->value() == list->verticalScrollBar()->maximum();
    };
    for (int i = 0; i < 100; ++i) {
        log(QString::number(i));
    }
    QTRY_COMPARE(shown().size(), 100);
    QTRY_VERIFY(list->verticalScrollBar()->maximum() > 0 && isAtEnd());
    QTest::mouseClick(find<QToolButton>("logFollowButton"), Qt::LeftButton);
    list->scrollToTop();
    log("one more");
    QTRY_COMPARE(shown().size(), 101);
    QVERIFY(!isAtEnd());
    QTest::mouseClick(find<QToolButton>("logFollowButton"), Qt::LeftButton);
    QVERIFY(isAtEnd());
}

void LogPanelTest::clearingTakesAllLinesOut()
{
    log("old");
    QTRY_COMPARE(shown(), QStringList("old"));
    QTest::mouseClick(find<QToolButton>("logPauseButton"), Qt::LeftButton);
    log("old, too");
    QTest::mouseClick(find<QToolButton>("logClearButton"), Qt::LeftButton);
    QTest::mouseClick(find<QToolButton>("logPauseButton"), Qt::LeftButton);
    QCOMPARE(shown(), QStringList());
    log("new");
    QTRY_COMPARE(shown(), QStringList("new"));
}

void LogPanelTest::onlyTheLastLinesStay()
{
    for (int i = 0; i < LogBook::mostLines; ++i) {
        log("early");
    }
    QTRY_COMPARE(shown().size(), LogBook::mostLines);
    log("late");
    log("latest");
    QTRY_COMPARE(shown().last(), QString("latest"));
    QCOMPARE(shown().size(), LogBook::mostLines);
    for (int i = 0; i < LogBook::mostLines + 7; ++i) {
        log(QString::number(i));
    }
    QTRY_COMPARE(shown().first(), QString("7"));
    QCOMPARE(shown().size(), LogBook::mostLines);
}

void LogPanelTest::chosenLinesAreCopied()
{
    log("one");
    log("two");
    log("three", Error);
    QTRY_COMPARE(shown().size(), 3);
    QTest::mouseClick(find<QToolButton>("logCopyButton"), Qt::LeftButton);
    QCOMPARE(QGuiApplication::clipboard()->text(),
             QString("12:30:01.250\tWarning\tone\n12:30:01.250\tWarning\ttwo\n"
                     "12:30:01.250\tError\tthree\n"));
    find<QLineEdit>("logSearchLineEdit")->setText("t");
    auto* const list = find<QTreeView>("logView");
    list->setCurrentIndex(list->model()->index(1, 0));
    QTest::mouseClick(find<QToolButton>("logCopyButton"), Qt::LeftButton);
    QCOMPARE(QGuiApplication::clipboard()->text(), QString("12:30:01.250\tError\tthree\n"));
}

void LogPanelTest::ctrlCCopiesWholeLines()
{
    log("one");
    log("two");
    QTRY_COMPARE(shown().size(), 2);
    auto* const list = find<QTreeView>("logView");
    list->setFocus();
    list->selectAll();
    QTest::keyClick(list, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(),
             QString("12:30:01.250\tWarning\tone\n12:30:01.250\tWarning\ttwo\n"));
}

void LogPanelTest::aMessageOfSeveralLinesIsOneRow()
{
    log("first line\nsecond line");
    QTRY_COMPARE(shown(), QStringList("first line second line"));
    QCOMPARE(panel->chosenText(), QString("12:30:01.250\tWarning\tfirst line\nsecond line\n"));
}

void LogPanelTest::saveAs(const QString& file)
{
    QTest::mouseClick(find<QToolButton>("logSaveButton"), Qt::LeftButton);
    auto* const dialog = find<QFileDialog>("saveLogDialog");
    QVERIFY(dialog && QTest::qWaitForWindowExposed(dialog));
    auto* const edit = dialog->findChild<QLineEdit*>("fileNameEdit");
    edit->setText(file);
    QTest::mouseClick(
        dialog->findChild<QDialogButtonBox*>("buttonBox")->button(QDialogButtonBox::Save),
        Qt::LeftButton);
    documentThreads().waitForDone();
}

void LogPanelTest::theLogIsSaved()
{
    log(QString::fromUtf8("größer"));
    QTRY_COMPARE(shown().size(), 1);
    saveAs(folder.filePath("kept.txt"));
    QFile file(folder.filePath("kept.txt"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(QString::fromUtf8(file.readAll()),
             QString::fromUtf8("12:30:01.250\tWarning\tgrößer\n"));
    QCoreApplication::processEvents();
    QVERIFY(!find<QMessageBox>("saveLogFailure"));
}

void LogPanelTest::aFailureToSaveIsTold()
{
    log("one");
    QVERIFY(QDir(folder.path()).mkdir("taken.txt"));
    QVERIFY(QDir(folder.filePath("taken.txt")).mkdir("inside"));
    QTest::mouseClick(find<QToolButton>("logSaveButton"), Qt::LeftButton);
    auto* const dialog = find<QFileDialog>("saveLogDialog");
    QVERIFY(dialog);
    emit dialog->fileSelected(folder.filePath("taken.txt"));
    documentThreads().waitForDone();
    QTRY_VERIFY(find<QMessageBox>("saveLogFailure"));
    QVERIFY(find<QMessageBox>("saveLogFailure")
                ->text()
                .startsWith("cannot write " + folder.filePath("taken.txt") + ": "));
}

void LogPanelTest::aPanelWithoutABookIsEmpty()
{
    panel = std::make_unique<LogPanel>(nullptr);
    QCOMPARE(shown(), QStringList());
    chooseLevel(0);
    find<QToolButton>("logClearButton")->click();
    QCOMPARE(panel->chosenText(), QString());
}

void LogPanelTest::everyControlCanBeReachedByKeyboard()
{
    QStringList reached;
    find<QComboBox>("logLevelComboBox")->setFocus();
    for (int i = 0; i < 8; ++i) {
        reached << QApplication::focusWidget()->objectName();
        QTest::keyClick(panel->windowHandle(), Qt::Key_Tab);
    }
    QCOMPARE(reached, QStringList({"logLevelComboBox", "logSearchLineEdit", "logFollowButton",
                                   "logPauseButton", "logCopyButton", "logSaveButton",
                                   "logClearButton", "logView"}));
}

int main(int argc, char** argv)
{
    setUpLogging(false);
    Application application(argc, argv, "Corvane Log Panel Test");
    LogPanelTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "LogPanelTest.moc"
