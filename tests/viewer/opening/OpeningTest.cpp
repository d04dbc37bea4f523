#include <tests/viewer/opening/OpeningStage.h>

#include <viewer/opening/FileOpening.h>
#include <viewer/opening/FolderContents.h>
#include <viewer/maps/MapWindow.h>
#include <viewer/batch/Startup.h>

#include <corvane/core/Application.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>
#include <tests/support/EachInItsProcess.h>

#include <QAction>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFile>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QSemaphore>
#include <QThreadPool>
#include <QWindow>
#include <QMdiArea>
#include <QtTest>

using namespace Corvane;
using namespace Corvane::Viewer;

/// What the user names to open, by drag and drop or by a folder, and where it opens.
class OpeningTest : public OpeningStage
{
    Q_OBJECT
private slots:
    void theChoiceOfThePlaceIsKept();
    void filesOpenInTheActiveMapWhenTheUserChoosesSo();
    void aDropWithShiftGoesTheOtherWay();
    void manyFilesOpenAtOnce();
    void textThatNamesSourcesIsDropped_data();
    void textThatNamesSourcesIsDropped();
    void otherTextIsNotTaken();

    void aFolderOpensItsImages();
    void aFolderOfManyImagesIsAskedAbout();
    void aFolderWithoutImagesIsASource();
    void filesBesideImagesAreNoImages();
    void aDiskThatDoesNotAnswerHoldsUpNothing();

private:
    bool drop(QMimeData* data, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const;
    bool dropFiles(const QStringList& files,
                   Qt::KeyboardModifiers modifiers = Qt::NoModifier) const;
};

/// Onto the empty corner of the work space, as the window system does.
bool OpeningTest::drop(QMimeData* data, Qt::KeyboardModifiers modifiers) const
{
    const QPoint corner = window->getMdiArea()->geometry().bottomRight() - QPoint(20, 20);
    QDragEnterEvent enter(corner, Qt::CopyAction, data, Qt::LeftButton, modifiers);
    QCoreApplication::sendEvent(window->windowHandle(), &enter);
    if (enter.isAccepted()) {
        QDropEvent event(corner, Qt::CopyAction, data, Qt::LeftButton, modifiers);
        QCoreApplication::sendEvent(window->windowHandle(), &event);
    }
    return enter.isAccepted();
}

bool OpeningTest::dropFiles(const QStringList& files, Qt::KeyboardModifiers modifiers) const
{
    QMimeData data;
    QList<QUrl> urls;
    for (const QString& file : files) {
        urls << QUrl::fromLocalFile(file);
    }
    data.setUrls(urls);
    return drop(&data, modifiers);
}

void OpeningTest::theChoiceOfThePlaceIsKept()
{
    QCOMPARE(FileOpening::usualPlace(), FileOpening::NewWindows);
    QVERIFY(action("actionOpenInWindows")->isChecked());
    action("actionOpenInMap")->trigger();
    QCOMPARE(FileOpening::usualPlace(), FileOpening::ActiveMap);
    QVERIFY(!action("actionOpenInWindows")->isChecked());
    action("actionOpenInWindows")->trigger();
    QCOMPARE(FileOpening::usualPlace(), FileOpening::NewWindows);
}

void OpeningTest::filesOpenInTheActiveMapWhenTheUserChoosesSo()
{
    action("actionOpenInMap")->trigger();
    window->open({writeImage("a.tif"), writeImage("b.tif")});
    QTRY_VERIFY(isOpen(map(), 2));
    QVERIFY(dropFiles({writeImage("c.tif")}));
    QTRY_VERIFY(isOpen(map(), 3));
    QCOMPARE(window->getMapWindows().size(), 1);

    action("actionOpenInWindows")->trigger();
    window->open({path("a.tif")});
    QTRY_COMPARE(window->getMapWindows().size(), 2);
}

void OpeningTest::aDropWithShiftGoesTheOtherWay()
{
    window->open({writeImage("a.tif")});
    QTRY_VERIFY(isOpen(map(), 1));
    map()->showNormal();
    map()->setGeometry(0, 0, 200, 200);
    QVERIFY(dropFiles({path("a.tif")}, Qt::ShiftModifier));
    QTRY_VERIFY(isOpen(map(), 2));
    action("actionOpenInMap")->trigger();
    QVERIFY(dropFiles({path("a.tif")}, Qt::ShiftModifier));
    QTRY_COMPARE(window->getMapWindows().size(), 2);
    QCOMPARE(map()->getView()->getNumberOfLayers(), 2);
}

void OpeningTest::manyFilesOpenAtOnce()
{
    QStringList files;
    for (int i = 0; i < 12; ++i) {
        files << writeImage(QString("%1.tif").arg(i));
    }
    window->open(files);
    QTRY_COMPARE(window->getMapWindows().size(), 12);
    for (MapWindow* each : window->getMapWindows()) {
        QTRY_VERIFY(isOpen(each, 1));
    }
}

void OpeningTest::textThatNamesSourcesIsDropped_data()
{
    QTest::addColumn<bool>("asUrl");
    QTest::newRow("a path") << false;
    QTest::newRow("a URL") << true;
}

void OpeningTest::textThatNamesSourcesIsDropped()
{
    QFETCH(bool, asUrl);
    const QString file = writeImage("a b.tif");
    QMimeData data;
    data.setText(asUrl ? QUrl::fromLocalFile(file).toString(QUrl::FullyEncoded) + "\r\n" : file);
    QVERIFY(drop(&data));
    QTRY_VERIFY(isOpen(map(), 1));
    QCOMPARE(map()->getView()->getLayerAt(0)->getDataSource(), file);
}

void OpeningTest::otherTextIsNotTaken()
{
    QMimeData data;
    data.setText("good morning");
    QVERIFY(!drop(&data));
    QMimeData nothing;
    QVERIFY(!drop(&nothing));
}

void OpeningTest::aFolderOpensItsImages()
{
    QVERIFY(QDir(folder->path()).mkdir("images"));
    writeImage("images/10.tif");
    writeImage("images/9.tif");
    writeImage("images/8.TIF");
    QVERIFY(QDir(folder->path()).mkdir("images/below"));
    writeImage("images/below/7.tif");
    action("actionOpenInMap")->trigger();
    QVERIFY(dropFiles({path("images")}));
    QTRY_VERIFY(isOpen(map(), 3));
    QCOMPARE(window->getMapWindows().size(), 1);
    const FolderContents contents;
    QCOMPARE(contents.sourcesIn(path("images")),
             QStringList({path("images/8.TIF"), path("images/9.tif"), path("images/10.tif")}));
}

void OpeningTest::aFolderOfManyImagesIsAskedAbout()
{
    QVERIFY(QDir(folder->path()).mkdir("images"));
    writeImage("images/0.tif");
    for (int i = 1; i <= 20; ++i) {
        QVERIFY(QFile::copy(path("images/0.tif"), path(QString("images/%1.tif").arg(i))));
    }
    action("actionOpenInMap")->trigger();
    const auto question = [this] { return window->findChild<QMessageBox*>("openManyQuestion"); };
    window->open({path("images")});
    QTRY_VERIFY(question());
    QVERIFY2(question()->text().contains("21 image"), qPrintable(question()->text()));
    QTest::mouseClick(question()->button(QMessageBox::Cancel), Qt::LeftButton);
    QTRY_VERIFY(!question());
    QVERIFY(window->getMapWindows().isEmpty());

    window->open({path("images")});
    QTRY_VERIFY(question());
    QTest::mouseClick(question()->findChild<QPushButton*>("openAll"), Qt::LeftButton);
    QTRY_VERIFY(isOpen(map(), 21));
}

void OpeningTest::aFolderWithoutImagesIsASource()
{
    QVERIFY(QDir(folder->path()).mkdir("nothing"));
    QCOMPARE(FolderContents().sourcesIn(path("nothing")), QStringList{path("nothing")});
    window->open({path("nothing")});
    QTRY_VERIFY(window->findChild<QMessageBox*>("openFailures"));
    QVERIFY(window->findChild<QMessageBox*>("openFailures")
                ->informativeText()
                .startsWith(path("nothing") + ": "));
}

void OpeningTest::filesBesideImagesAreNoImages()
{
    QVERIFY(QDir(folder->path()).mkdir("images"));
    writeImage("images/a.tif");
    for (const char* name :
         {"a.tif.aux.xml", "a.tif.ovr", "a.hdr", "a.prj", "notes.txt", "a.cmap", "a", "a.json"})
    {
        QVERIFY(QFile::copy(path("images/a.tif"), path(QString("images/") + name)));
    }
    QCOMPARE(FolderContents().sourcesIn(path("images")), QStringList{path("images/a.tif")});
}

/// Threads that wait stand for disks that do not answer.
void OpeningTest::aDiskThatDoesNotAnswerHoldsUpNothing()
{
    QSemaphore answer;
    for (int i = 0; i < folderThreads().maxThreadCount(); ++i) {
        folderThreads().start([&answer] { answer.acquire(); });
    }
    QVERIFY(QDir(folder->path()).mkdir("silent"));
    writeImage("silent/b.tif");
    window->open({path("silent"), writeImage("a.tif")});
    QTRY_VERIFY(isOpen(map(), 1));
    QCOMPARE(map()->getName(), QString("a.tif"));
    QCOMPARE(window->getMapWindows().size(), 1);
    answer.release(folderThreads().maxThreadCount());
    QTRY_VERIFY(isOpen(map(1), 1));
    QCOMPARE(map(1)->getName(), QString("b.tif"));
}

int main(int argc, char** argv)
{
    setUpLogging(false);
    Application application(argc, argv, "Corvane Opening Test");
    OpeningTest test;
    return runEachInItsProcess(test, argc, argv); // the window ends the plugins
}
#include "OpeningTest.moc"
