#include <tests/plugins/TestRasters.h>
#include <tests/plugins/TestVectors.h>
#include <tests/plugins/WebTileTools.h>
#include <tests/pluginchecker/CheckRun.h>
#include <tests/server/ServerProcess.h>

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

using namespace Corvane::Tests;

namespace {

QString plugin(const char* name)
{
    return QDir(QStringLiteral(CORVANE_PLUGIN_DIR)).filePath(QLatin1String(name));
}

// Warnings are those of a loaded machine.
void verifyAllSteps(const char* name, const QString& source)
{
    const CheckRun run =
        CheckRun::with({"--json", "--time-limit", "600", "--source", source, plugin(name)});
    const QJsonArray steps = run.json().value("steps").toArray();
    QCOMPARE(steps.size(), 17);
    for (const QJsonValue& step : steps) {
        const QString stepName = step.toObject().value("name").toString();
        QVERIFY2(run.resultOf(stepName) == "pass",
                 qPrintable(stepName + ": " + run.resultOf(stepName)));
    }
    QCOMPARE(run.exitCode, 0);
}

} // namespace

/// The plugins of the house keep the contract that they ask of others.
class OwnPluginsTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();

    void rastersPass();
    void vectorsPass();
    void webTilesPass();
    void imagesOfAServerPass();

private:
    QTemporaryDir folder;
};

void OwnPluginsTest::initTestCase()
{
    QVERIFY(folder.isValid());
    RasterRecipe recipe;
    recipe.overviews = {2, 4};
    QVERIFY(makeRaster(folder.filePath("rgb.tif"), recipe));
}

void OwnPluginsTest::rastersPass()
{
    verifyAllSteps("corvane-raster.so", folder.filePath("rgb.tif"));
}

void OwnPluginsTest::vectorsPass()
{
    const QString file = folder.filePath("shapes.gpkg");
    QVERIFY(makeVectors(
        file, shapes({"POLYGON((400000 5000000, 450000 5000000, 450000 5040000, "
                      "400000 5000000))",
                      "LINESTRING(400000 5000000, 470000 5060000)", "POINT(430000 5030000)"})));
    verifyAllSteps("corvane-vector.so", file);
}

void OwnPluginsTest::webTilesPass()
{
    const TileServer server;
    verifyAllSteps("corvane-webtiles.so", server.tiles());
}

void OwnPluginsTest::imagesOfAServerPass()
{
    const ServerProcess server(folder.path());
    QVERIFY(server.isRunning());
    verifyAllSteps("corvane-imageserver-layer.so",
                   QStringLiteral("zwtp://127.0.0.1:%1/rgb.tif").arg(server.port()));
}

QTEST_GUILESS_MAIN(OwnPluginsTest)

#include "OwnPluginsTest.moc"
