#include <plugins/common/CacheBox.h>
#include <plugins/common/ServedBudgetPage.h>
#include <plugins/common/TileBudget.h>
#include <plugins/common/TileCache.h>

#include <corvane/core/Application.h>
#include <corvane/core/System.h>

#include <QDir>
#include <QDirIterator>
#include <QLabel>
#include <QPushButton>
#include <QSettings>
#include <QSpinBox>
#include <QtTest>

using namespace Corvane;
using namespace Corvane::Map;

namespace {

constexpr qint64 mebibyte = 1 << 20;

/// Holds what it is told to, until it is asked to give back.
class Holder final : public ITileHolder
{
public:
    qint64 heldBytes() const override { return bytes; }
    qint64 giveBackOtherLevels(qint64 wanted) override
    {
        const qint64 given = qMin(wanted, bytes);
        bytes -= given;
        return given;
    }
    qint64 giveBackOutOfView(qint64) override { return 0; }
    qint64 bytes = 0;
};

} // namespace

/// The pages of plugins in the preferences: memory and disk, with their use.
class BudgetPageTest : public QObject
{
    Q_OBJECT
private slots:
    void init();

    void tellsWhatIsHeldWhileItIsSeen();
    void aSmallerBudgetHoldsAtOnce();
    void noBudgetStandsForAQuarterOfTheMachine();
    void aBudgetOfEachLayerNamesNoSum();
    void theDiskCacheTakesItsSizeAtOnce();
    void aCacheThatIsSwitchedOffIsEmpty();

private:
    static QSettings* settings() { return Application::instance()->getSettings(); }
};

void BudgetPageTest::init()
{
    settings()->remove("Plugins");
}

void BudgetPageTest::tellsWhatIsHeldWhileItIsSeen()
{
    settings()->setValue("Plugins/Some/MemoryBudgetMB", 10);
    qint64 held = 3 * mebibyte;
    BudgetPage page("Some", "Some layers", BudgetPage::Scope::AllLayers, [&held] { return held; });
    QCOMPARE(page.windowTitle(), QString("Some layers"));
    const auto use = page.findChild<QLabel*>("memoryUseLabel");
    QCOMPARE(use->text(), QString("3.00 MiB of 10.00 MiB"));
    held = 4 * mebibyte;
    QCOMPARE(use->text(), QString("3.00 MiB of 10.00 MiB"));
    page.show();
    QCOMPARE(use->text(), QString("4.00 MiB of 10.00 MiB"));
    held = 5 * mebibyte;
    QTRY_COMPARE(use->text(), QString("5.00 MiB of 10.00 MiB"));
}

void BudgetPageTest::aSmallerBudgetHoldsAtOnce()
{
    Holder holder;
    holder.bytes = 100 * mebibyte;
    TileBudget& budget = TileBudget::instance();
    budget.add(&holder);
    BudgetPage page("Some", "Some layers", BudgetPage::Scope::AllLayers,
                    [&budget] { return budget.heldBytes(); });
    page.findChild<QSpinBox*>("memoryBudgetSpinBox")->setValue(50);
    QCOMPARE(holder.bytes, 100 * mebibyte);
    page.apply();
    QCOMPARE(settings()->value("Plugins/Some/MemoryBudgetMB").toInt(), 50);
    QCOMPARE(holder.bytes, 45 * mebibyte);
    QCOMPARE(page.findChild<QLabel*>("memoryUseLabel")->text(), QString("45.00 MiB of 50.00 MiB"));
    budget.remove(&holder);
    budget.setLimit(0);
}

void BudgetPageTest::noBudgetStandsForAQuarterOfTheMachine()
{
    BudgetPage page("Some", "Some layers", BudgetPage::Scope::AllLayers, [] { return 0; });
    const auto field = page.findChild<QSpinBox*>("memoryBudgetSpinBox");
    QCOMPARE(field->value(), 0);
    QCOMPARE(field->text(), QString("A quarter of the machine's memory"));
    page.apply();
    QCOMPARE(TileBudget::instance().getLimit(), System::getTotalRAM() / 4 * mebibyte);
    TileBudget::instance().setLimit(0);
}

void BudgetPageTest::aBudgetOfEachLayerNamesNoSum()
{
    BudgetPage page("Some", "Some layers", BudgetPage::Scope::EachLayer, [] { return mebibyte; });
    QCOMPARE(page.findChild<QLabel*>("memoryUseLabel")->text(), QString("1.00 MiB"));
}

void BudgetPageTest::theDiskCacheTakesItsSizeAtOnce()
{
    ServedBudgetPage page("Served", "Served layers");
    const auto field = page.findChild<QSpinBox*>("diskCacheSpinBox");
    QCOMPARE(field->value(), 256);
    page.show();
    const auto label = page.findChild<QLabel*>("cacheLabel");
    QTRY_COMPARE(label->text(), QString("0 bytes of 256.00 MiB"));
    field->setValue(12);
    page.apply();
    QTRY_COMPARE(label->text(), QString("0 bytes of 12.00 MiB"));
    QCOMPARE(settings()->value("Plugins/Served/DiskCacheMB").toInt(), 12);
}

void BudgetPageTest::aCacheThatIsSwitchedOffIsEmpty()
{
    const CachePlace place = TileCache::placeFor("Served");
    TileCache::instance().setFolder(place.folder, place.limit);
    QNetworkDiskCache filler;
    filler.setCacheDirectory(place.folder);
    QNetworkCacheMetaData data;
    data.setUrl(QUrl("http://127.0.0.1/tile"));
    data.setSaveToDisk(true);
    QIODevice* const device = filler.prepare(data);
    QVERIFY(device);
    device->write(QByteArray(1000, 'x'));
    filler.insert(device);
    const auto files = [&place] {
        int count = 0;
        QDirIterator entries(place.folder, {"*.d"}, QDir::Files, QDirIterator::Subdirectories);
        for (; entries.hasNext(); entries.next()) {
            ++count;
        }
        return count;
    };
    QCOMPARE(files(), 1);
    ServedBudgetPage page("Served", "Served layers");
    page.findChild<QSpinBox*>("diskCacheSpinBox")->setValue(0);
    page.apply();
    QTRY_COMPARE(page.findChild<QLabel*>("cacheLabel")->text(), QString("switched off"));
    QVERIFY(!page.findChild<QPushButton*>("clearCacheButton")->isEnabled());
    QCOMPARE(files(), 0);
    QVERIFY(TileCache::placeFor("Served").folder.isEmpty());
}

int main(int argc, char** argv)
{
    Application application(argc, argv, "Corvane Budget Test");
    QStandardPaths::setTestModeEnabled(true);
    QLocale::setDefault(QLocale("en_US"));
    BudgetPageTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "BudgetPageTest.moc"
