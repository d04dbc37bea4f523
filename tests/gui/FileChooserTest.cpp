#include <corvane/gui/FileChooser.h>

#include <tests/gui/DialogAnswers.h>
#include <tests/gui/PanelPictures.h>
#include <tests/map/MapViewTools.h>

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QTreeView>
#include <QtTest>

using namespace Corvane;
using namespace Corvane::Tests;

/// The door to what the dialogs keep together. An explicit instantiation may name private members.
template <bool* preview, QString* raster, QString* generic, QString* script, QString* vector>
struct SharedDoor
{
    friend bool showsPreview() { return *preview; }
    friend QStringList lastFilters() { return {*raster, *generic, *script, *vector}; }
};
bool showsPreview();
QStringList lastFilters();
template struct SharedDoor<&FileChooser::m_bShowFilePreview, &FileChooser::m_sLastRasterFilter,
                           &FileChooser::m_sLastGenericFilter, &FileChooser::m_sLastScriptFilter,
                           &FileChooser::m_sLastVectorFilter>;

namespace {

constexpr char stateKey[] = "Gui/FileChooser/State";
constexpr char filterKey[] = "Gui/FileChooser/LastRasterFilter";

const QList<QUrl> sideBar = {
    QUrl("file:"),
    QUrl("file:///C:/Documents and Settings/kvoss"),
    QUrl("file:///C:/Documents and Settings/kvoss/Desktop"),
    QUrl("file:///C:/Data"),
    QUrl("file:///E:/Data"),
    QUrl("file:///C:/Vantis71/examples/Shared_Data"),
};

const QStringList filters = {
    "All Files (*.*)",
    "All Supported Image Files (*.alg *.vns *.vds *.tif *.tiff *.zwt *.jp2 *.j2k *.jpc *.jpf *.jpx "
    "*.j2c *.img *.doq *.jpg *.png)",
    "Vantis Algorithm (*.alg)",
    "Vantis Dataset (*.vns)",
    "Vantis Virtual Dataset (*.vds)",
    "Tiff/GeoTiff (*.tif *.tiff)",
    "Zoned Wavelet Tiles (*.zwt)",
    "JPEG 2000 (*.jp2 *.j2k *.jpc *.jpf *.jpx *.j2c)",
    "TAVRO Picta (*.img)",
    "USGS DOQQ (*.doqq)",
    "JPEG (*.jpg)",
    "Portable Network Graphics (*.png)",
};

QSettings* settings()
{
    return Application::instance()->getSettings();
}

/// Forgets what Qt itself keeps of all file dialogs of the user.
void forgetQtsOwnMemory()
{
    QSettings qt(QSettings::UserScope, "QtProject");
    qt.remove("FileDialog");
    qt.remove("Qt/filedialog");
}

QFileDialog& fileDialog(QDialog& dialog)
{
    return *qobject_cast<QFileDialog*>(&dialog);
}

void chooseFilter(QDialog& dialog, const QString& filter)
{
    auto* const box = dialog.findChild<QComboBox*>("fileTypeCombo");
    box->setFocus();
    QTest::keyClick(box, Qt::Key_Home);
    while (box->currentText() != filter && box->currentIndex() < box->count() - 1) {
        QTest::keyClick(box, Qt::Key_Down);
    }
}

void typeName(QDialog& dialog, const QString& name)
{
    auto* const line = dialog.findChild<QLineEdit*>("fileNameEdit");
    line->setFocus();
    line->clear();
    QTest::keyClicks(line, name);
    if (QWidget* const completions = QApplication::activePopupWidget()) {
        completions->close(); // they would take the next click
    }
}

/// Marks a file of the shown folder beside those that are marked.
void mark(QDialog& dialog, const QString& name)
{
    auto* const list = dialog.findChild<QTreeView*>("treeView");
    const auto find = [&] {
        const QModelIndexList found = list->model()->match(
            list->model()->index(0, 0, list->rootIndex()), Qt::DisplayRole, name);
        return found.isEmpty() ? QModelIndex() : found.first();
    };
    if (QTest::qWaitFor([&] { return list->visualRect(find()).isValid(); }) &&
        !list->selectionModel()->isSelected(find()))
    {
        QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::ControlModifier,
                          list->visualRect(find()).center());
    }
}

/// Ends the dialog with this button; a dialog that stays is cancelled, so that the test ends.
void click(QDialog& dialog, QDialogButtonBox::StandardButton button)
{
    QTest::mouseClick(dialog.findChild<QDialogButtonBox*>("buttonBox")->button(button),
                      Qt::LeftButton);
    if (dialog.isVisible()) {
        dialog.reject();
    }
}

} // namespace

class FileChooserTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();

    void itLooksRight();
    void itHasNoSignalsOrSlotsOfItsOwn();
    void thePlainDialogHasItsSideBar();
    void allArgumentsReachTheDialog();
    void theDirectoryWinsOverWhatIsRemembered();
    void onlyTheGeometryIsKept();
    void whatStandsUnderTheKeyIsTakenAsFarAsItGoes();
    void withAPreviewItIsTheSameDialog();
    void theWishForAPreviewIsThatOfTheLastDialog();

    void theFirstCallShowsAllFiles();
    void theFilterTextIsFixed();
    void oneFileIsReturned();
    void ofSeveralFilesTheFirstIsReturned();
    void cancellingReturnsNull();
    void theChosenFilterIsThereTheNextTime_data();
    void theChosenFilterIsThereTheNextTime();
    void onlyTheFilterOfRastersIsRead();
    void aFullPathOpensItsFolderWithTheFileSelected();
    void aFileThatIsNotThereCannotBeOpened();

private:
    QString path(const char* name) const { return folder.filePath(name); }

    QTemporaryDir folder;
    bool wishBeforeAnyDialog = false;
};

void FileChooserTest::initTestCase()
{
    wishBeforeAnyDialog = showsPreview();
    QVERIFY(folder.isValid());
    for (const char* name : {"a.jpg", "b.jpg", "c.tif"}) {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
}

void FileChooserTest::init()
{
    settings()->remove("Gui/FileChooser");
    forgetQtsOwnMemory();
    QVERIFY(QDir::setCurrent(folder.path()));
}

void FileChooserTest::itLooksRight()
{
    FileChooser dialog(nullptr, "Open File", folder.path(), filters.join(";;"));
    dialog.setFileMode(QFileDialog::ExistingFiles);
    QCOMPARE(takePictures(dialog, "FileChooser"), QStringList());
}

void FileChooserTest::itHasNoSignalsOrSlotsOfItsOwn()
{
    const QMetaObject& type = FileChooser::staticMetaObject;
    QCOMPARE(type.className(), "Corvane::FileChooser");
    QCOMPARE(type.methodCount(), type.methodOffset());
    QCOMPARE(type.propertyCount(), type.propertyOffset());
}

void FileChooserTest::thePlainDialogHasItsSideBar()
{
    const FileChooser dialog;
    QVERIFY(!dialog.parent());
    QCOMPARE(dialog.sidebarUrls(), sideBar);
    QCOMPARE(dialog.sidebarUrls().first().toString(), QString("file:"));
}

void FileChooserTest::allArgumentsReachTheDialog()
{
    QWidget parent;
    const FileChooser dialog(&parent, "A caption", folder.path(), "One (*.one);;Two (*.two)");
    QCOMPARE(dialog.parentWidget(), &parent);
    QCOMPARE(dialog.windowTitle(), QString("A caption"));
    QCOMPARE(dialog.directory().absolutePath(), folder.path());
    QCOMPARE(dialog.nameFilters(), QStringList({"One (*.one)", "Two (*.two)"}));
}

void FileChooserTest::theDirectoryWinsOverWhatIsRemembered()
{
    QDir(folder.path()).mkdir("deeper");
    QFileDialog elsewhere(nullptr, QString(), QDir::rootPath());
    settings()->setValue(stateKey, elsewhere.saveState());
    const FileChooser remembering;
    QCOMPARE(remembering.directory().absolutePath(), QDir::rootPath());
    const FileChooser told(nullptr, QString(), path("deeper"));
    QCOMPARE(told.directory().absolutePath(), path("deeper"));
}

void FileChooserTest::onlyTheGeometryIsKept()
{
    QSize size;
    {
        FileChooser dialog;
        dialog.show();
        dialog.resize(777, 555);
        dialog.setViewMode(QFileDialog::List);
        QCOMPARE(dialog.viewMode(), QFileDialog::List);
        size = dialog.size();
        QVERIFY(!settings()->contains(stateKey));
    }
    const QByteArray kept = settings()->value(stateKey).toByteArray();
    QFileDialog plain;
    QVERIFY(!plain.restoreState(kept));
    QVERIFY(plain.restoreGeometry(kept));

    forgetQtsOwnMemory();
    FileChooser next;
    next.show();
    QCOMPARE(next.size(), size);
    QCOMPARE(next.viewMode(), QFileDialog::Detail);
}

void FileChooserTest::whatStandsUnderTheKeyIsTakenAsFarAsItGoes()
{
    // what an older program may have left under the key is taken as far as it goes
    QFileDialog older;
    older.setViewMode(QFileDialog::List);
    settings()->setValue(stateKey, older.saveState());
    const FileChooser dialog;
    QCOMPARE(dialog.viewMode(), QFileDialog::List);
    settings()->setValue(stateKey, "nonsense");
    const FileChooser fresh;
    QCOMPARE(fresh.sidebarUrls(), sideBar);
}

void FileChooserTest::withAPreviewItIsTheSameDialog()
{
    const FileChooser without;
    const FileChooser with(nullptr, QString(), QString(), QString(), true);
    QCOMPARE(with.findChildren<QWidget*>().size(), without.findChildren<QWidget*>().size());
    QCOMPARE(with.sidebarUrls(), sideBar);
}

// Nobody reads it yet.
void FileChooserTest::theWishForAPreviewIsThatOfTheLastDialog()
{
    QVERIFY(wishBeforeAnyDialog);
    const FileChooser without;
    QVERIFY(!showsPreview());
    const FileChooser with(nullptr, QString(), QString(), QString(), true);
    QVERIFY(showsPreview());
    const FileChooser third;
    QVERIFY(!showsPreview());
}

void FileChooserTest::theFirstCallShowsAllFiles()
{
    DialogAnswers answers;
    QWidget parent;
    parent.setObjectName("host");
    QString filter;
    QString directory;
    QList<QUrl> urls;
    QFileDialog::FileMode mode = QFileDialog::AnyFile;
    const QWidget* dialogParent = nullptr;
    answers.expect([&](QDialog& dialog) {
        filter = fileDialog(dialog).selectedNameFilter();
        directory = fileDialog(dialog).directory().absolutePath();
        urls = fileDialog(dialog).sidebarUrls();
        mode = fileDialog(dialog).fileMode();
        dialogParent = dialog.parentWidget();
        click(dialog, QDialogButtonBox::Cancel);
    });
    FileChooser::getOpenFileName(&parent, QString());
    QVERIFY(answers.isDone());
    QCOMPARE(answers.shown, QStringList({"dialog Open File"}));
    QCOMPARE(filter, QString("All Files (*.*)"));
    QCOMPARE(directory, QFileDialog().directory().absolutePath());
    QCOMPARE(urls, sideBar);
    QCOMPARE(mode, QFileDialog::ExistingFiles);
    QCOMPARE(dialogParent, &parent);
}

void FileChooserTest::theFilterTextIsFixed()
{
    DialogAnswers answers;
    QStringList offered;
    answers.expect([&](QDialog& dialog) {
        offered = fileDialog(dialog).nameFilters();
        click(dialog, QDialogButtonBox::Cancel);
    });
    FileChooser::getOpenFileName(nullptr, QString());
    QCOMPARE(offered, filters);
}

void FileChooserTest::oneFileIsReturned()
{
    DialogAnswers answers;
    answers.expect([this](QDialog& dialog) {
        typeName(dialog, path("c.tif"));
        click(dialog, QDialogButtonBox::Open);
    });
    QCOMPARE(FileChooser::getOpenFileName(nullptr, QString()), path("c.tif"));
}

void FileChooserTest::ofSeveralFilesTheFirstIsReturned()
{
    DialogAnswers answers;
    QStringList marked;
    answers.expect([&](QDialog& dialog) {
        for (const char* name : {"b.jpg", "c.tif", "a.jpg"}) {
            mark(dialog, name);
        }
        marked = fileDialog(dialog).selectedFiles();
        click(dialog, QDialogButtonBox::Open);
    });
    const QString chosen = FileChooser::getOpenFileName(nullptr, path("a.jpg"));
    QCOMPARE(marked.size(), 3);
    QCOMPARE(chosen, marked.first());
}

void FileChooserTest::cancellingReturnsNull()
{
    DialogAnswers answers;
    answers.expect([](QDialog& dialog) {
        typeName(dialog, "c.tif");
        click(dialog, QDialogButtonBox::Cancel);
    });
    QVERIFY(FileChooser::getOpenFileName(nullptr, QString()).isNull());
}

void FileChooserTest::theChosenFilterIsThereTheNextTime_data()
{
    QTest::addColumn<bool>("cancelled");
    QTest::newRow("after a file was opened") << false;
    QTest::newRow("after the first was cancelled") << true;
}

void FileChooserTest::theChosenFilterIsThereTheNextTime()
{
    QFETCH(bool, cancelled);
    DialogAnswers answers;
    answers.expect([this, cancelled](QDialog& dialog) {
        chooseFilter(dialog, "JPEG (*.jpg)");
        typeName(dialog, path("a.jpg"));
        click(dialog, cancelled ? QDialogButtonBox::Cancel : QDialogButtonBox::Open);
    });
    QCOMPARE(FileChooser::getOpenFileName(nullptr, QString()),
             cancelled ? QString() : path("a.jpg"));
    QCOMPARE(settings()->value(filterKey).toString(), QString("JPEG (*.jpg)"));
    QString filter;
    answers.expect([&filter](QDialog& dialog) {
        filter = fileDialog(dialog).selectedNameFilter();
        click(dialog, QDialogButtonBox::Cancel);
    });
    FileChooser::getOpenFileName(nullptr, QString());
    QCOMPARE(filter, QString("JPEG (*.jpg)"));
    QCOMPARE(settings()->value(filterKey).toString(), QString("JPEG (*.jpg)"));
}

void FileChooserTest::onlyTheFilterOfRastersIsRead()
{
    settings()->setValue(filterKey, "JPEG (*.jpg)");
    DialogAnswers answers;
    answers.expect([](QDialog& dialog) {
        chooseFilter(dialog, "Zoned Wavelet Tiles (*.zwt)");
        click(dialog, QDialogButtonBox::Cancel);
    });
    FileChooser::getOpenFileName(nullptr, QString());
    // raster: what was read, not what was chosen; generic, script and vector are for later
    QCOMPARE(lastFilters(), QStringList({"JPEG (*.jpg)", QString(), QString(), QString()}));
    QCOMPARE(settings()->value(filterKey).toString(), QString("Zoned Wavelet Tiles (*.zwt)"));
}

void FileChooserTest::aFullPathOpensItsFolderWithTheFileSelected()
{
    QVERIFY(QDir::setCurrent(QDir::rootPath()));
    DialogAnswers answers;
    QString directory;
    QStringList selected;
    QString typed;
    answers.expect([&](QDialog& dialog) {
        directory = fileDialog(dialog).directory().absolutePath();
        selected = fileDialog(dialog).selectedFiles();
        typed = dialog.findChild<QLineEdit*>("fileNameEdit")->text();
        click(dialog, QDialogButtonBox::Open);
    });
    QCOMPARE(FileChooser::getOpenFileName(nullptr, path("b.jpg")), path("b.jpg"));
    QCOMPARE(directory, folder.path());
    QCOMPARE(selected, QStringList({path("b.jpg")}));
    QCOMPARE(typed, QString("b.jpg"));
}

void FileChooserTest::aFileThatIsNotThereCannotBeOpened()
{
    DialogAnswers answers;
    bool enabled = true;
    answers.expect([&](QDialog& dialog) {
        typeName(dialog, path("missing.tif"));
        enabled = dialog.findChild<QDialogButtonBox*>("buttonBox")
                      ->button(QDialogButtonBox::Open)
                      ->isEnabled();
        click(dialog, QDialogButtonBox::Open);
    });
    QVERIFY(FileChooser::getOpenFileName(nullptr, QString()).isNull());
    QVERIFY(!enabled);
}

MAP_TEST_MAIN(FileChooserTest)

#include "FileChooserTest.moc"
