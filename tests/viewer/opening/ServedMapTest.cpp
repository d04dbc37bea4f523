#include <viewer/maps/MapWindow.h>
#include <viewer/window/ViewerWindow.h>

#include <corvane/browser/ZWTPBrowser.h>
#include <corvane/core/Application.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapCanvas.h>
#include <corvane/map/MapView.h>
#include <tests/gui/DialogAnswers.h>
#include <tests/gui/PanelPictures.h>
#include <tests/plugins/LayerProbe.h>
#include <tests/plugins/TestRasters.h>
#include <tests/server/ServerProcess.h>
#include <tests/support/EachInItsProcess.h>

#include <QAction>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QMdiArea>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <QtTest>

#include <memory>

using namespace Corvane;
using namespace Corvane::Tests;
using namespace Corvane::Viewer;
using Gui::ZWTPBrowser;

namespace {

constexpr int patience = 60000; // milliseconds

} // namespace

class ServedMapTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();

    void imagesAreAddedByAddDoubleClickAndOk();
    void aPasswordOpensTheImageAndIsStoredNowhere();
    void aWrongPasswordIsToldWithoutIt();

private:
    void browse(const ServerProcess& server, const QString& user = QString(),
                const QString& password = QString());
    ZWTPBrowser* dialog() const { return window->findChild<ZWTPBrowser*>(); }
    QTreeWidget& tree() const { return *dialog()->findChild<QTreeWidget*>("treeWidget"); }
    QPoint placeOf(const QString& image) const;
    void click(const QString& image) const;
    QStringList layers() const;
    QStringList credentials();

    QTemporaryDir folder;
    QTemporaryDir secrets;
    std::unique_ptr<ViewerWindow> window;
};

void ServedMapTest::initTestCase()
{
    qputenv("TMPDIR", QFile::encodeName(secrets.path())); // of the browser's cache
    QVERIFY(QDir(folder.path()).mkpath("coast"));
    QVERIFY(makeRaster(folder.filePath("plain.tif"), {}));
    QVERIFY(makeRaster(folder.filePath("coast/north.tif"), {}));
    Application::instance()->getSettings()->setValue("Gui/MapView/UseAnimation", false);
}

void ServedMapTest::init()
{
    window = std::make_unique<ViewerWindow>();
    window->resize(1200, 800);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
}

void ServedMapTest::cleanup()
{
    window.reset();
}

void ServedMapTest::browse(const ServerProcess& server, const QString& user,
                           const QString& password)
{
    auto* const action = window->findChild<QAction*>("actionAddFromServer");
    QVERIFY(action && action->isEnabled());
    QVERIFY(!action->associatedWidgets().isEmpty());
    action->trigger();
    QVERIFY(dialog() && QTest::qWaitForWindowExposed(dialog()));
    dialog()
        ->findChild<QComboBox*>("serverNameCombo")
        ->setEditText(QStringLiteral("127.0.0.1:%1").arg(server.port()));
    dialog()->findChild<QLineEdit*>("userEdit")->setText(user);
    dialog()->findChild<QLineEdit*>("passwordEdit")->setText(password);
    QTest::mouseClick(dialog()->findChild<QPushButton*>("connectButton"), Qt::LeftButton);
}

QPoint ServedMapTest::placeOf(const QString& image) const
{
    tree().expandAll();
    for (QTreeWidgetItemIterator i(&tree()); *i; ++i) {
        if ((*i)->text(0) == image) {
            tree().scrollToItem(*i);
            return tree().visualItemRect(*i).center();
        }
    }
    return QPoint();
}

void ServedMapTest::click(const QString& image) const
{
    QTest::mouseClick(tree().viewport(), Qt::LeftButton, {}, placeOf(image));
}

/// "class description", of the active map.
QStringList ServedMapTest::layers() const
{
    QStringList names;
    const MapWindow* const map = window->getActiveMapWindow();
    for (Map::Layer* layer : map ? map->getView()->getLayers() : QVector<Map::Layer*>()) {
        names << QStringLiteral("%1 %2").arg(layer->metaObject()->className(),
                                             layer->getDescription());
    }
    return names;
}

/// Starts a server that asks for anna's password.
QStringList ServedMapTest::credentials()
{
    QFile file(secrets.filePath("password"));
    if (!file.open(QIODevice::WriteOnly) || file.write("s3cret\n") < 0) {
        return {};
    }
    return {"--user", "anna", "--password-file", file.fileName()};
}

void ServedMapTest::imagesAreAddedByAddDoubleClickAndOk()
{
    const ServerProcess server(folder.path());
    QVERIFY(server.isRunning());
    browse(server);
    QTRY_COMPARE_WITH_TIMEOUT(tree().topLevelItemCount(), 1, patience);
    QTRY_COMPARE_WITH_TIMEOUT(dialog()->findChild<QComboBox*>("serviceNameCombo")->currentText(),
                              QString("default"), patience);
    click("plain.tif");
    QTest::mouseClick(dialog()->findChild<QPushButton*>("addButton"), Qt::LeftButton);
    const QString plain = "Corvane::Map::ImageServerLayer plain.tif";
    const QString north = "Corvane::Map::ImageServerLayer north.tif";
    QTRY_COMPARE_WITH_TIMEOUT(layers(), QStringList({plain}), patience);

    click("north.tif");
    QTest::mouseDClick(tree().viewport(), Qt::LeftButton, {}, placeOf("north.tif"));
    QTRY_COMPARE_WITH_TIMEOUT(layers().size(), 2, patience);
    QVERIFY(layers().contains(north));
    QTRY_VERIFY(!dialog());
    QCOMPARE(window->getMdiArea()->subWindowList().size(), 1);

    browse(server);
    QTRY_COMPARE_WITH_TIMEOUT(tree().topLevelItemCount(), 1, patience);
    QTRY_VERIFY_WITH_TIMEOUT(dialog()->isEnabled() && !QApplication::overrideCursor(), patience);
    click("plain.tif");
    QTest::mouseClick(
        dialog()->findChild<QDialogButtonBox*>("buttonBox")->button(QDialogButtonBox::Ok),
        Qt::LeftButton);
    QTRY_COMPARE_WITH_TIMEOUT(layers().size(), 3, patience);
    QCOMPARE(layers().count(plain), 2);
    QTRY_VERIFY(!dialog());
    for (Map::Layer* layer : window->getActiveMapWindow()->getView()->getLayers()) {
        QTRY_COMPARE_WITH_TIMEOUT(int(layer->getPercentComplete()), 100, patience);
    }
    QCOMPARE(takePictures(*window, "served-map"), QStringList());
}

void ServedMapTest::aPasswordOpensTheImageAndIsStoredNowhere()
{
    LogLines log;
    const ServerProcess server(folder.path(), credentials());
    QVERIFY(server.isRunning());
    browse(server, "anna", "s3cret");
    QTRY_COMPARE_WITH_TIMEOUT(tree().topLevelItemCount(), 1, patience);
    QTRY_VERIFY_WITH_TIMEOUT(dialog()->isEnabled() && !QApplication::overrideCursor(), patience);
    click("plain.tif");
    QTest::mouseDClick(tree().viewport(), Qt::LeftButton, {}, placeOf("plain.tif"));
    QTRY_COMPARE_WITH_TIMEOUT(layers(), QStringList({"Corvane::Map::ImageServerLayer plain.tif"}),
                              patience);
    QTRY_VERIFY(!dialog());
    QVERIFY(window->getActiveMapWindow()->windowTitle().startsWith("plain.tif"));
    QCOMPARE(log.holding("s3cret"), QStringList());

    QSettings* const settings = Application::instance()->getSettings();
    settings->sync();
    QFile stored(settings->fileName());
    QVERIFY(stored.open(QIODevice::ReadOnly));
    const QByteArray text = stored.readAll();
    QVERIFY(text.contains("plain.tif")); // as a recent one
    QVERIFY(!text.contains("s3cret"));
}

void ServedMapTest::aWrongPasswordIsToldWithoutIt()
{
    LogLines log;
    const ServerProcess server(folder.path(), credentials());
    QVERIFY(server.isRunning());
    DialogAnswers answers;
    const QString url = QStringLiteral("zwtp://127.0.0.1:%1/plain.tif").arg(server.port());
    QString told;
    answers.expect([&told](QDialog& box) {
        told = static_cast<QMessageBox&>(box).text() +
               static_cast<QMessageBox&>(box).informativeText() +
               static_cast<QMessageBox&>(box).detailedText();
        box.reject();
    });
    window->addFiles({url + "|anna|wr0ng"}, nullptr);
    QTRY_VERIFY_WITH_TIMEOUT(answers.isDone(), patience);
    QVERIFY2(told.contains(url), qPrintable(told));
    QVERIFY(!told.contains("wr0ng"));
    QCOMPARE(log.holding("wr0ng"), QStringList());
}

int main(int argc, char** argv)
{
    QTemporaryDir store;
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, store.path());
    Application application(argc, argv, "Corvane Served Map Test");
    ServedMapTest test;
    return runEachInItsProcess(test, argc, argv); // the window ends the plugins
}

#include "ServedMapTest.moc"
