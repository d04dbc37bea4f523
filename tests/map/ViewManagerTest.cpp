#include <corvane/map/ViewManager.h>

#include <QStringList>
#include <QVector>
#include <QtTest>

#include <cmath>
#include <limits>

using namespace Corvane::Map;

Q_DECLARE_METATYPE(Corvane::Map::IClient::PointerMode)

namespace {

constexpr int smallestInt = std::numeric_limits<int>::min();
constexpr int largestInt = std::numeric_limits<int>::max();

QString number(double value)
{
    return QString::number(value, 'g', 17);
}

/// Writes down what it is told. Several clients may share one log, to see their order.
class RecordingClient : public IClient
{
public:
    explicit RecordingClient(QString newName = QString(), QStringList* newLog = nullptr)
        : name(newName),
          log(newLog ? *newLog : ownLog)
    {
    }

    void beginClientUpdate(bool zoom) override
    {
        log << name + (zoom ? QStringLiteral("begin(zoom)") : QStringLiteral("begin(roam)"));
    }
    void endClientUpdate() override { log << name + QStringLiteral("end"); }
    void onExtentChange(double tlx, double tly, double brx, double bry, bool flag) override
    {
        const QStringList corners = {number(tlx), number(tly), number(brx), number(bry)};
        log << name + QStringLiteral("extent(%1)").arg(corners.join(QLatin1Char(' ')));
        flags << flag;
    }
    GeolinkMode getGeolinkMode() override { return geolinkMode; }
    void setGeolinkMode(GeolinkMode mode) override
    {
        log << name + QStringLiteral("geolink(%1)").arg(mode);
        geolinkMode = mode;
    }

    QString name;
    QStringList ownLog;
    QStringList& log;
    QVector<bool> flags;
    GeolinkMode geolinkMode = GeolinkScreen;
};

using Extents = QVector<double>; // left, top, right, bottom

Extents extentsOf(ViewManager& manager)
{
    Extents result(4);
    manager.getWorldExtents(&result[0], &result[1], &result[2], &result[3]);
    return result;
}

QPointF toWorld(ViewManager& manager, int x, int y)
{
    double wx = 0.0;
    double wy = 0.0;
    manager.convertDeviceToWorld(x, y, &wx, &wy);
    return QPointF(wx, wy);
}

QPoint toDevice(const ViewManager& manager, double wx, double wy)
{
    int x = 0;
    int y = 0;
    manager.convertWorldToDevice(wx, wy, &x, &y);
    return QPoint(x, y);
}

const Extents startExtents = {-180.0, 180.0, 180.0, -180.0};
const QString startLine = QStringLiteral("extent(-180 180 180 -180)");

} // namespace

class ViewManagerTest : public QObject
{
    Q_OBJECT

private slots:
    void aNewManagerShowsTheWorldOfDegreesGrownToItsSquareDevice();
    void aCopyHasEveryFieldAndALifeOfItsOwn();

    void deviceToWorldIsAScaleAndAnOffset_data();
    void deviceToWorldIsAScaleAndAnOffset();
    void worldToDeviceRoundsHalvesUpward_data();
    void worldToDeviceRoundsHalvesUpward();
    void aCollapsedDeviceGivesInfinitiesAndNaN();
    void aCollapsedWorldGivesTheSmallestInt();
    void positionsAtTheEndsOfTheIntsDoNotOverflow();

    void theAspectRuleGrowsTheWorld_data();
    void theAspectRuleGrowsTheWorld();
    void aPointIsNoExtent();
    void aCollapsedDeviceGrowsTheWorldBeyondNumbers();
    void extentsAreToldOnlyWhenAsked();

    void initSetsBothRectanglesAndTells();
    void initIgnoresACollapsedWidth();
    void initComparesTheBottomWithTheLeft();
    void initKeepsAWorldThatIsAPointAndTellsNobody();
    void resizeKeepsTheWorldPerPixelAndTellsTwice();
    void resizeMovesTheFirstCornerInTheWorld();
    void resizeToNothingChangesNothing_data();
    void resizeToNothingChangesNothing();
    void resizeThatInitIgnoresTellsOnce();
    void deviceExtentsChangeTheMappingSilently();

    void rotationIsToldAndTakesNoPart();
    void pointerModeIsAPlainStore();
    void masterClientIsAPlainStore();

    void attachTellsOnceAndRefusesASecondTime();
    void aClientIsAttachedByTheTimeItIsTold();
    void detachTakesTheClientOutOfItsGeolink();
    void clientsAreCalledInTheOrderOfAttachment();
    void aClientMayDetachWhileItIsCalled();
    void aClientThatLeavesTakesNobodyElsesTurn_data();
    void aClientThatLeavesTakesNobodyElsesTurn();
    void theExtentsAreReadAfreshForEachClient();
    void theBracketSaysWhetherItZooms_data();
    void theBracketSaysWhetherItZooms();

    void aGestureIsLoggedWhole_data();
    void aGestureIsLoggedWhole();
    void theModeIsReadAfreshAtEachCall();
    void roamMovesTheWorldUnderThePointer_data();
    void roamMovesTheWorldUnderThePointer();
    void roamGoesOnFromTheLastPositionInWhateverMode_data();
    void roamGoesOnFromTheLastPositionInWhateverMode();
    void roamDoesNotPassTheAspectRule();
    void zoomScalesOncePerPixelAboutThePress_data();
    void zoomScalesOncePerPixelAboutThePress();
    void zoomInHasNoFloor();
    void aZoomBeyondAllNumbersEndsAtOnce();
    void zoomBoxClickLeavesExtentsAndClosesTheBracket();
    void zoomBoxShowsTheMarkedRectangle_data();
    void zoomBoxShowsTheMarkedRectangle();
    void zoomBoxOfZeroHeightIsGrown();
    void zoomBoxTakesTheReleaseAndNotTheLastMove();
};

void ViewManagerTest::aNewManagerShowsTheWorldOfDegreesGrownToItsSquareDevice()
{
    RecordingClient client;
    ViewManager manager(&client);

    QCOMPARE(extentsOf(manager), startExtents);
    QCOMPARE(client.log, QStringList({startLine}));
    QCOMPARE(client.flags, QVector<bool>({false}));
    QCOMPARE(manager.getPointerMode(), IClient::Roam);
    QCOMPARE(manager.getMasterClient(), &client);
    QCOMPARE(toWorld(manager, 0, 0), QPointF(-180.0, 180.0));
    QCOMPARE(toWorld(manager, 100, 100), QPointF(180.0, -180.0));
}

void ViewManagerTest::aCopyHasEveryFieldAndALifeOfItsOwn()
{
    RecordingClient client;
    RecordingClient late;
    ViewManager manager(&client);
    manager.init(10, 20, 110, 120, 0.0, 100.0, 100.0, 0.0);
    manager.setPointerMode(IClient::Zoom);
    manager.setMasterClient(&late);
    manager.pointerDown(30, 40);
    client.log.clear();

    ViewManager copy(manager);
    QCOMPARE(copy.getPointerMode(), IClient::Zoom);
    QCOMPARE(copy.getMasterClient(), &late);
    QCOMPARE(extentsOf(copy), Extents({0.0, 100.0, 100.0, 0.0}));
    QCOMPARE(toWorld(copy, 30, 40), QPointF(20.0, 80.0));
    QVERIFY(!copy.attach(&client)); // the list came along
    QVERIFY(client.log.isEmpty());

    copy.pointerMove(30, 39); // about the press at 30, 40, from the last position there
    const Extents grown = {(0.0 - 20.0) * 1.015 + 20.0, (100.0 - 80.0) * 1.015 + 80.0,
                           (100.0 - 20.0) * 1.015 + 20.0, (0.0 - 80.0) * 1.015 + 80.0};
    for (int i = 0; i < 4; ++i) {
        QVERIFY(std::fabs(extentsOf(copy)[i] - grown[i]) < 1e-12);
    }
    QCOMPARE(client.log.size(), 1);
    QVERIFY(copy.attach(&late));
    QVERIFY(manager.attach(&late)); // the original's list did not grow
    QCOMPARE(extentsOf(manager), Extents({0.0, 100.0, 100.0, 0.0}));

    ViewManager assigned(&late);
    assigned = copy;
    QCOMPARE(extentsOf(assigned), extentsOf(copy));
    QVERIFY(!assigned.attach(&client));
}

void ViewManagerTest::deviceToWorldIsAScaleAndAnOffset_data()
{
    QTest::addColumn<QPoint>("device");
    QTest::addColumn<QPointF>("world");
    QTest::newRow("the first corner is the world's top left") << QPoint(10, 20) << QPointF(0, 50);
    QTest::newRow("the second corner is the world's bottom right")
        << QPoint(210, 120) << QPointF(100, 0);
    QTest::newRow("the middle is the middle") << QPoint(110, 70) << QPointF(50, 25);
    QTest::newRow("outside the device the scale goes on") << QPoint(0, 140) << QPointF(-5, -10);
}

void ViewManagerTest::deviceToWorldIsAScaleAndAnOffset()
{
    QFETCH(QPoint, device);
    QFETCH(QPointF, world);
    RecordingClient client;
    ViewManager manager(&client);
    manager.init(10, 20, 210, 120, 0.0, 50.0, 100.0, 0.0);

    QCOMPARE(toWorld(manager, device.x(), device.y()), world);
    QCOMPARE(toDevice(manager, world.x(), world.y()), device);
}

void ViewManagerTest::worldToDeviceRoundsHalvesUpward_data()
{
    QTest::addColumn<double>("world");
    QTest::addColumn<int>("device");
    QTest::newRow("a whole number stays") << 7.0 << 7;
    QTest::newRow("below the half goes down") << 2.25 << 2;
    QTest::newRow("a half goes up") << 2.5 << 3;
    QTest::newRow("a small half goes up") << 0.5 << 1;
    QTest::newRow("a negative half goes up too") << -2.5 << -2;
    QTest::newRow("a small negative half becomes zero") << -0.5 << 0;
    QTest::newRow("beyond the negative half goes down") << -2.75 << -3;
    QTest::newRow("what fits no int becomes the smallest") << 1e12 << smallestInt;
    QTest::newRow("what fits no int below becomes the smallest") << -1e12 << smallestInt;
}

void ViewManagerTest::worldToDeviceRoundsHalvesUpward()
{
    QFETCH(double, world);
    QFETCH(int, device);
    RecordingClient client;
    ViewManager manager(&client);
    manager.init(0, 0, 100, 100, 0.0, 0.0, 100.0, 100.0); // y down: one unit is one pixel

    QCOMPARE(toDevice(manager, world, world), QPoint(device, device));
}

void ViewManagerTest::aCollapsedDeviceGivesInfinitiesAndNaN()
{
    RecordingClient client;
    ViewManager manager(&client);
    manager.setDeviceExtents(5, 5, 0, 0);

    double wx = 0.0;
    double wy = 0.0;
    manager.convertDeviceToWorld(6, 6, &wx, &wy);
    QVERIFY(std::isinf(wx) && wx > 0.0);
    QVERIFY(std::isinf(wy) && wy < 0.0);
    manager.convertDeviceToWorld(5, 5, &wx, &wy);
    QVERIFY(std::isnan(wx) && std::isnan(wy));
}

void ViewManagerTest::aCollapsedWorldGivesTheSmallestInt()
{
    RecordingClient client;
    ViewManager manager(&client);
    manager.init(0, 0, 100, 100, 7.0, 7.0, 7.0, 7.0);

    QCOMPARE(toDevice(manager, 8.0, 6.0), QPoint(smallestInt, smallestInt));
    QCOMPARE(toDevice(manager, 7.0, 7.0), QPoint(smallestInt, smallestInt));
}

void ViewManagerTest::positionsAtTheEndsOfTheIntsDoNotOverflow()
{
    RecordingClient client;
    ViewManager manager(&client);
    manager.setDeviceExtents(smallestInt, smallestInt, largestInt, largestInt);
    const double span = largestInt;
    QCOMPARE(toWorld(manager, largestInt, smallestInt).x(),
             360.0 / span * (2.0 * span + 1.0) - 180.0);

    manager.setDeviceExtents(largestInt, largestInt, 2, 2); // the far corner wraps round
    QCOMPARE(toWorld(manager, smallestInt + 1, smallestInt + 1), QPointF(180.0, -180.0));

    manager.setPointerMode(IClient::Roam);
    manager.pointerDown(smallestInt, largestInt);
    manager.pointerMove(largestInt, smallestInt);
    manager.resize(smallestInt, largestInt, largestInt, largestInt);
    QCOMPARE(client.log.last().left(7), QStringLiteral("extent("));
}

void ViewManagerTest::theAspectRuleGrowsTheWorld_data()
{
    QTest::addColumn<QSize>("device");
    QTest::addColumn<Extents>("given");
    QTest::addColumn<Extents>("kept");
    const QSize square(100, 100);
    QTest::newRow("a rectangle of the device's shape is kept")
        << square << Extents{10, 30, 30, 10} << Extents{10, 30, 30, 10};
    QTest::newRow("a shape within the tolerance is kept")
        << square << Extents{0, 1, 1 + 1.15e-7, 0} << Extents{0, 1, 1 + 1.15e-7, 0};
    const double wide = 1 + 1.25e-7;
    const double below = wide / -1.0 + 1.0;
    const double half = 0.5 * std::fabs(below);
    QTest::newRow("a shape just beyond the tolerance grows")
        << square << Extents{0, 1, wide, 0} << Extents{0, 1 + half, wide, below + half};
    QTest::newRow("a wide world across zero grows about its centre")
        << square << Extents{-180, 90, 180, -90} << Extents{-180, 180, 180, -180};
    QTest::newRow("a wide world with its bottom at zero grows about its centre")
        << square << Extents{0, 20, 40, 0} << Extents{0, 30, 40, -10};
    QTest::newRow("a wide world above zero shifts when it grows across it")
        << square << Extents{0, 20, 40, 10} << Extents{0, 25, 40, -15};
    QTest::newRow("a wide world that stays above zero grows about its centre")
        << square << Extents{0, 120, 40, 110} << Extents{0, 135, 40, 95};
    QTest::newRow("a wide world with y downward moves by half")
        << square << Extents{0, 10, 40, 20} << Extents{0, 25, 40, 65};
    QTest::newRow("a tall world right of zero grows about its centre")
        << square << Extents{10, 40, 20, 0} << Extents{-5, 40, 35, 0};
    QTest::newRow("a tall world left of zero shifts when it grows across it")
        << square << Extents{-10, 40, -5, 0} << Extents{-22.5, 40, 17.5, 0};
    QTest::newRow("a tall world from right to left is measured without its sign")
        << square << Extents{20, 40, 10, 0} << Extents{-5, 40, 35, 0};
    QTest::newRow("a square world grows wide on a wide device")
        << QSize(200, 100) << Extents{0, 10, 10, 0} << Extents{-5, 10, 15, 0};
    QTest::newRow("a square world grows tall on a tall device")
        << QSize(100, 200) << Extents{0, 10, 10, 0} << Extents{0, 15, 10, -5};
    QTest::newRow("a mirrored device counts by its absolute shape")
        << QSize(-200, 100) << Extents{0, 10, 10, 0} << Extents{-5, 10, 15, 0};
    QTest::newRow("a world of zero height grows as if y ran down")
        << square << Extents{0, 5, 10, 5} << Extents{0, 10, 10, 20};
    QTest::newRow("a world of zero width grows")
        << square << Extents{5, 10, 5, 0} << Extents{0, 10, 10, 0};
}

void ViewManagerTest::theAspectRuleGrowsTheWorld()
{
    QFETCH(QSize, device);
    QFETCH(Extents, given);
    QFETCH(Extents, kept);
    RecordingClient client;
    ViewManager manager(&client);
    manager.setDeviceExtents(0, 0, device.width(), device.height());

    QVERIFY(manager.setWorldExtents(given[0], given[1], given[2], given[3], false));
    QCOMPARE(extentsOf(manager), kept);
}

void ViewManagerTest::aPointIsNoExtent()
{
    RecordingClient client;
    ViewManager manager(&client);
    client.log.clear();

    QVERIFY(!manager.setWorldExtents(3.0, 4.0, 3.0, 4.0, true));
    QCOMPARE(extentsOf(manager), startExtents);
    QVERIFY(client.log.isEmpty());
}

void ViewManagerTest::aCollapsedDeviceGrowsTheWorldBeyondNumbers()
{
    RecordingClient client;
    ViewManager manager(&client);
    manager.setDeviceExtents(0, 0, 100, 0);

    QVERIFY(manager.setWorldExtents(0.0, 10.0, 10.0, 0.0, false));
    const Extents extents = extentsOf(manager);
    QVERIFY(std::isinf(extents[0]) && std::isnan(extents[2]));
    QCOMPARE(extents[1], 10.0);
    QCOMPARE(extents[3], 0.0);
}

void ViewManagerTest::extentsAreToldOnlyWhenAsked()
{
    RecordingClient client;
    ViewManager manager(&client);
    client.log.clear();

    QVERIFY(manager.setWorldExtents(0.0, 10.0, 10.0, 0.0, false));
    QVERIFY(client.log.isEmpty());
    QVERIFY(manager.setWorldExtents(1.0, 11.0, 11.0, 1.0, true));
    QCOMPARE(client.log, QStringList({QStringLiteral("extent(1 11 11 1)")}));
}

void ViewManagerTest::initSetsBothRectanglesAndTells()
{
    RecordingClient client;
    ViewManager manager(&client);
    client.log.clear();

    manager.init(10, 20, 210, 120, 0.0, 50.0, 50.0, 0.0);
    QCOMPARE(client.log, QStringList({QStringLiteral("extent(-25 50 75 0)")}));
    QCOMPARE(toWorld(manager, 210, 120), QPointF(75.0, 0.0));
}

void ViewManagerTest::initIgnoresACollapsedWidth()
{
    RecordingClient client;
    ViewManager manager(&client);
    client.log.clear();

    manager.init(10, 20, 10, 120, 0.0, 50.0, 100.0, 0.0);
    QVERIFY(client.log.isEmpty());
    QCOMPARE(extentsOf(manager), startExtents);
    QCOMPARE(toWorld(manager, 100, 100), QPointF(180.0, -180.0));
}

void ViewManagerTest::initComparesTheBottomWithTheLeft()
{
    RecordingClient client;
    ViewManager manager(&client);
    client.log.clear();

    manager.init(50, 0, 150, 50, 0.0, 50.0, 100.0, 0.0); // a sound device, ignored
    QVERIFY(client.log.isEmpty());
    QCOMPARE(extentsOf(manager), startExtents);

    manager.init(0, 50, 100, 50, 0.0, 50.0, 100.0, 0.0); // a collapsed one, taken
    QCOMPARE(client.log.size(), 1);
    QVERIFY(std::isnan(toWorld(manager, 0, 50).y()));
}

void ViewManagerTest::initKeepsAWorldThatIsAPointAndTellsNobody()
{
    RecordingClient client;
    ViewManager manager(&client);
    client.log.clear();

    manager.init(0, 0, 200, 200, 7.0, 8.0, 7.0, 8.0);
    QVERIFY(client.log.isEmpty());
    QCOMPARE(extentsOf(manager), Extents({7.0, 8.0, 7.0, 8.0}));
}

void ViewManagerTest::resizeKeepsTheWorldPerPixelAndTellsTwice()
{
    RecordingClient client;
    ViewManager manager(&client);
    client.log.clear();

    manager.resize(0, 0, 200, 50); // straight after construction, without an init
    const QString line = QStringLiteral("extent(-180 180 540 0)");
    QCOMPARE(client.log, QStringList({line, line}));
    QCOMPARE(toWorld(manager, 100, 50), QPointF(180.0, 0.0));
}

void ViewManagerTest::resizeMovesTheFirstCornerInTheWorld()
{
    RecordingClient client;
    ViewManager manager(&client);
    manager.init(10, 20, 110, 120, 0.0, 50.0, 50.0, 0.0); // half a unit per pixel
    client.log.clear();

    manager.resize(30, 30, 100, 100);
    const QString line = QStringLiteral("extent(10 45 60 -5)");
    QCOMPARE(client.log, QStringList({line, line}));
    QCOMPARE(toWorld(manager, 10, 20), QPointF(0.0, 50.0)); // every pixel keeps its place
}

void ViewManagerTest::resizeToNothingChangesNothing_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("no width") << QSize(0, 50);
    QTest::newRow("no height") << QSize(50, 0);
    QTest::newRow("neither") << QSize(0, 0);
}

void ViewManagerTest::resizeToNothingChangesNothing()
{
    QFETCH(QSize, size);
    RecordingClient client;
    ViewManager manager(&client);
    client.log.clear();

    manager.resize(5, 5, size.width(), size.height());
    QVERIFY(client.log.isEmpty());
    QCOMPARE(extentsOf(manager), startExtents);
    QCOMPARE(toWorld(manager, 100, 100), QPointF(180.0, -180.0));
}

void ViewManagerTest::resizeThatInitIgnoresTellsOnce()
{
    RecordingClient client;
    ViewManager manager(&client);
    client.log.clear();

    manager.resize(60, 10, 100, 50); // bottom 60 lies at left 60
    QCOMPARE(client.log, QStringList({startLine}));
    QCOMPARE(toWorld(manager, 100, 100), QPointF(180.0, -180.0));
}

void ViewManagerTest::deviceExtentsChangeTheMappingSilently()
{
    RecordingClient client;
    ViewManager manager(&client);
    client.log.clear();

    manager.setDeviceExtents(10, 20, 200, 50);
    QVERIFY(client.log.isEmpty());
    QCOMPARE(toWorld(manager, 10, 20), QPointF(-180.0, 180.0));
    QCOMPARE(toWorld(manager, 210, 70), QPointF(180.0, -180.0));
    manager.fireExtentChange();
    QCOMPARE(client.log, QStringList({startLine}));
}

void ViewManagerTest::rotationIsToldAndTakesNoPart()
{
    RecordingClient client;
    ViewManager manager(&client);
    client.log.clear();

    manager.setRotation(45.0);
    QCOMPARE(client.log, QStringList({startLine}));
    QCOMPARE(toWorld(manager, 100, 0), QPointF(180.0, 180.0));
    QCOMPARE(toDevice(manager, 180.0, 180.0), QPoint(100, 0));
}

void ViewManagerTest::pointerModeIsAPlainStore()
{
    RecordingClient client;
    ViewManager manager(&client);
    client.log.clear();

    for (const auto mode : {IClient::Point, IClient::ZoomBox, IClient::Zoom, IClient::Roam}) {
        manager.setPointerMode(mode);
        QCOMPARE(manager.getPointerMode(), mode);
    }
    QVERIFY(client.log.isEmpty());
}

void ViewManagerTest::masterClientIsAPlainStore()
{
    RecordingClient client;
    RecordingClient other;
    ViewManager manager(&client);
    client.log.clear();

    manager.setMasterClient(&other);
    QCOMPARE(manager.getMasterClient(), &other);
    manager.setMasterClient(nullptr);
    QVERIFY(!manager.getMasterClient());
    QVERIFY(client.log.isEmpty() && other.log.isEmpty());
}

void ViewManagerTest::attachTellsOnceAndRefusesASecondTime()
{
    RecordingClient client;
    RecordingClient other;
    ViewManager manager(&client);
    client.log.clear();

    QVERIFY(manager.attach(&other));
    QCOMPARE(other.log, QStringList({startLine}));
    QVERIFY(!manager.attach(&other));
    QVERIFY(!manager.attach(&client));
    QCOMPARE(other.log, QStringList({startLine}));
    QVERIFY(client.log.isEmpty());
    QCOMPARE(other.flags, QVector<bool>({false}));
}

void ViewManagerTest::aClientIsAttachedByTheTimeItIsTold()
{
    class Insisting : public RecordingClient
    {
    public:
        explicit Insisting(ViewManager* newManager) : manager(newManager) {}
        void onExtentChange(double, double, double, double, bool) override
        {
            ++calls;
            if (calls == 1) {
                taken = manager->attach(this);
            }
        }
        ViewManager* manager;
        int calls = 0;
        bool taken = true;
    };
    RecordingClient client;
    ViewManager manager(&client);
    Insisting insisting(&manager);

    QVERIFY(manager.attach(&insisting));
    QVERIFY(!insisting.taken);
    QCOMPARE(insisting.calls, 1);
}

void ViewManagerTest::detachTakesTheClientOutOfItsGeolink()
{
    RecordingClient client;
    RecordingClient stranger;
    ViewManager manager(&client);
    client.log.clear();

    manager.detach(&stranger); // was never attached
    QCOMPARE(stranger.log, QStringList({QStringLiteral("geolink(0)")}));
    QCOMPARE(stranger.getGeolinkMode(), IClient::GeolinkNone);

    manager.detach(&client);
    manager.fireExtentChange();
    QCOMPARE(client.log, QStringList({QStringLiteral("geolink(0)")}));
    QCOMPARE(manager.getMasterClient(), &client); // stays
    QVERIFY(manager.attach(&client));
}

void ViewManagerTest::clientsAreCalledInTheOrderOfAttachment()
{
    QStringList log;
    RecordingClient first(QStringLiteral("1:"), &log);
    RecordingClient second(QStringLiteral("2:"), &log);
    RecordingClient third(QStringLiteral("3:"), &log);
    ViewManager manager(&second);
    manager.attach(&first);
    manager.attach(&third);
    log.clear();

    manager.beginClientUpdate();
    manager.fireExtentChange();
    manager.endClientUpdate();
    QCOMPARE(log, QStringList({QStringLiteral("2:begin(roam)"), QStringLiteral("1:begin(roam)"),
                               QStringLiteral("3:begin(roam)"), QStringLiteral("2:") + startLine,
                               QStringLiteral("1:") + startLine, QStringLiteral("3:") + startLine,
                               QStringLiteral("2:end"), QStringLiteral("1:end"),
                               QStringLiteral("3:end")}));
}

void ViewManagerTest::aClientMayDetachWhileItIsCalled()
{
    class Leaver : public RecordingClient
    {
    public:
        void onExtentChange(double, double, double, double, bool) override
        {
            if (manager) {
                manager->detach(this);
            }
        }
        ViewManager* manager = nullptr;
    };
    RecordingClient client;
    Leaver leaver;
    ViewManager manager(&client);
    manager.attach(&leaver);
    leaver.manager = &manager;

    manager.fireExtentChange();
    QCOMPARE(leaver.log, QStringList({QStringLiteral("geolink(0)")}));
    manager.fireExtentChange();
    QCOMPARE(leaver.log, QStringList({QStringLiteral("geolink(0)")}));
}

void ViewManagerTest::aClientThatLeavesTakesNobodyElsesTurn_data()
{
    QTest::addColumn<QString>("leaves");
    QTest::newRow("as an interactive change starts") << "begin";
    QTest::newRow("as the extents change") << "extent";
    QTest::newRow("as the interactive change is over") << "end";
}

void ViewManagerTest::aClientThatLeavesTakesNobodyElsesTurn()
{
    class Leaver : public RecordingClient
    {
    public:
        void beginClientUpdate(bool) override { leaveAt(QStringLiteral("begin")); }
        void endClientUpdate() override { leaveAt(QStringLiteral("end")); }
        void onExtentChange(double, double, double, double, bool) override
        {
            leaveAt(QStringLiteral("extent"));
        }
        void leaveAt(const QString& call)
        {
            if (manager && call == leaves) {
                manager->detach(this);
                manager->detach(companion);
            }
        }
        QString leaves;
        ViewManager* manager = nullptr;
        IClient* companion = nullptr;
    };
    Leaver leaver;
    RecordingClient companion;
    RecordingClient stays;
    ViewManager manager(&leaver);
    manager.attach(&companion);
    manager.attach(&stays);
    QFETCH(QString, leaves);
    leaver.leaves = leaves;
    leaver.manager = &manager;
    leaver.companion = &companion;
    companion.log.clear();
    stays.log.clear();

    manager.beginClientUpdate();
    manager.fireExtentChange();
    manager.endClientUpdate();

    QCOMPARE(stays.log,
             QStringList({QStringLiteral("begin(roam)"), startLine, QStringLiteral("end")}));
    QCOMPARE(companion.log.last(), QStringLiteral("geolink(0)"));
}

void ViewManagerTest::theExtentsAreReadAfreshForEachClient()
{
    class Mover : public RecordingClient
    {
    public:
        void onExtentChange(double, double, double, double, bool) override
        {
            if (manager) {
                manager->setWorldExtents(1.0, 11.0, 11.0, 1.0, false);
            }
        }
        ViewManager* manager = nullptr;
    };
    RecordingClient first;
    Mover mover;
    RecordingClient last;
    ViewManager manager(&first);
    manager.attach(&mover);
    manager.attach(&last);
    mover.manager = &manager;
    first.log.clear();
    last.log.clear();

    manager.fireExtentChange();

    QCOMPARE(first.log, QStringList({startLine}));
    QCOMPARE(last.log, QStringList({QStringLiteral("extent(1 11 11 1)")}));
}

void ViewManagerTest::theBracketSaysWhetherItZooms_data()
{
    QTest::addColumn<IClient::PointerMode>("mode");
    QTest::addColumn<QString>("line");
    QTest::newRow("roaming does not zoom") << IClient::Roam << "begin(roam)";
    QTest::newRow("zooming zooms") << IClient::Zoom << "begin(zoom)";
    QTest::newRow("the box zooms") << IClient::ZoomBox << "begin(zoom)";
    QTest::newRow("pointing does not zoom") << IClient::Point << "begin(roam)";
}

void ViewManagerTest::theBracketSaysWhetherItZooms()
{
    QFETCH(IClient::PointerMode, mode);
    QFETCH(QString, line);
    RecordingClient client;
    ViewManager manager(&client);
    manager.setPointerMode(mode);
    client.log.clear();

    manager.beginClientUpdate();
    manager.endClientUpdate();
    QCOMPARE(client.log, QStringList({line, QStringLiteral("end")}));
}

void ViewManagerTest::aGestureIsLoggedWhole_data()
{
    QTest::addColumn<IClient::PointerMode>("mode");
    QTest::addColumn<QStringList>("log");
    QTest::newRow("roaming opens, moves at each move and closes")
        << IClient::Roam
        << QStringList({"begin(roam)", "extent(-10 110 90 10)", "extent(-10 110 90 10)",
                        "extent(-10 100 90 0)", "end"});
    QTest::newRow("zooming calls at each move, with or without a vertical part")
        << IClient::Zoom
        << QStringList({"begin(zoom)", "extent(0 100 100 0)", "extent(0 100 100 0)",
                        "extent(0 100 100 0)", "end"});
    QTest::newRow("the box opens, and shows its rectangle before it closes")
        << IClient::ZoomBox << QStringList({"begin(zoom)", "extent(40 60 50 50)", "end"});
    QTest::newRow("pointing tells nothing") << IClient::Point << QStringList();
}

void ViewManagerTest::aGestureIsLoggedWhole()
{
    QFETCH(IClient::PointerMode, mode);
    QFETCH(QStringList, log);
    RecordingClient client;
    ViewManager manager(&client);
    manager.init(0, 0, 100, 100, 0.0, 100.0, 100.0, 0.0);
    manager.setPointerMode(mode);
    client.log.clear();

    manager.pointerDown(40, 40);
    if (mode == IClient::Zoom) {
        manager.pointerMove(50, 40); // sideways only
        manager.pointerMove(50, 40);
        manager.pointerMove(60, 40);
    } else {
        manager.pointerMove(50, 50);
        manager.pointerMove(50, 50);
        manager.pointerMove(50, 40);
    }
    manager.pointerUp(50, 50);
    QCOMPARE(client.log, log);
}

void ViewManagerTest::theModeIsReadAfreshAtEachCall()
{
    RecordingClient client;
    ViewManager manager(&client);
    manager.init(0, 0, 100, 100, 0.0, 100.0, 100.0, 0.0);
    manager.setPointerMode(IClient::Point);
    client.log.clear();

    manager.pointerDown(40, 40);
    manager.setPointerMode(IClient::Roam);
    manager.pointerMove(41, 40);
    manager.setPointerMode(IClient::ZoomBox);
    manager.pointerMove(80, 80);
    manager.pointerUp(40, 40); // pressed and released at one place
    QCOMPARE(client.log,
             QStringList({QStringLiteral("extent(-1 100 99 0)"), QStringLiteral("end")}));
}

void ViewManagerTest::roamMovesTheWorldUnderThePointer_data()
{
    QTest::addColumn<QPoint>("to");
    QTest::addColumn<Extents>("extents");
    QTest::newRow("to the right the world's left comes in")
        << QPoint(70, 50) << Extents{-10, 100, 90, 0};
    QTest::newRow("to the left the world's right comes in")
        << QPoint(40, 50) << Extents{5, 100, 105, 0};
    QTest::newRow("downward the world's top comes in") << QPoint(50, 60) << Extents{0, 105, 100, 5};
    QTest::newRow("upward the world's bottom comes in")
        << QPoint(50, 30) << Extents{0, 90, 100, -10};
    QTest::newRow("beyond the device it goes on")
        << QPoint(450, -350) << Extents{-200, -100, -100, -200};
}

void ViewManagerTest::roamMovesTheWorldUnderThePointer()
{
    QFETCH(QPoint, to);
    QFETCH(Extents, extents);
    RecordingClient client;
    ViewManager manager(&client);
    manager.init(0, 0, 200, 200, 0.0, 100.0, 100.0, 0.0); // half a unit per pixel

    const QPointF grabbed = toWorld(manager, 50, 50);
    manager.pointerDown(50, 50);
    manager.pointerMove(to.x(), to.y());
    QCOMPARE(extentsOf(manager), extents);
    QCOMPARE(toWorld(manager, to.x(), to.y()), grabbed);
}

void ViewManagerTest::roamGoesOnFromTheLastPositionInWhateverMode_data()
{
    QTest::addColumn<IClient::PointerMode>("mode");
    QTest::addColumn<bool>("released");
    QTest::newRow("a move while pointing") << IClient::Point << false;
    QTest::newRow("a move of a box") << IClient::ZoomBox << false;
    QTest::newRow("a release while pointing") << IClient::Point << true;
}

void ViewManagerTest::roamGoesOnFromTheLastPositionInWhateverMode()
{
    QFETCH(IClient::PointerMode, mode);
    QFETCH(bool, released);
    RecordingClient client;
    ViewManager manager(&client);
    manager.init(0, 0, 100, 100, 0.0, 100.0, 100.0, 0.0);
    manager.setPointerMode(mode);
    manager.pointerDown(10, 10);
    if (released) {
        manager.pointerUp(60, 60);
    } else {
        manager.pointerMove(60, 60);
    }

    manager.setPointerMode(IClient::Roam);
    manager.pointerMove(61, 62);

    QCOMPARE(extentsOf(manager), Extents({-1.0, 102.0, 99.0, 2.0}));
}

void ViewManagerTest::roamDoesNotPassTheAspectRule()
{
    RecordingClient client;
    ViewManager manager(&client);
    manager.init(0, 0, 100, 100, 0.0, 100.0, 100.0, 0.0);
    manager.setDeviceExtents(0, 0, 200, 100);

    manager.pointerDown(0, 0);
    manager.pointerMove(20, 0);
    QCOMPARE(extentsOf(manager), Extents({-10.0, 100.0, 90.0, 0.0}));
}

void ViewManagerTest::zoomScalesOncePerPixelAboutThePress_data()
{
    QTest::addColumn<int>("dy");
    QTest::newRow("one pixel upward widens") << -1;
    QTest::newRow("three pixels upward widen thrice") << -3;
    QTest::newRow("many pixels upward widen step by step, to the last bit") << -100;
    QTest::newRow("one pixel downward narrows") << 1;
    QTest::newRow("twelve pixels downward narrow twelve times") << 12;
    QTest::newRow("many pixels downward narrow step by step, to the last bit") << 100;
    QTest::newRow("sideways only keeps the scale") << 0;
}

void ViewManagerTest::zoomScalesOncePerPixelAboutThePress()
{
    QFETCH(int, dy);
    RecordingClient client;
    ViewManager manager(&client);
    manager.init(0, 0, 128, 128, -64.0, 64.0, 64.0, -64.0); // one unit per pixel, exactly
    manager.setPointerMode(IClient::Zoom);
    manager.pointerDown(96, 32); // the world point 32, 32
    client.log.clear();

    double factor = 1.0;
    for (int i = dy; i < 0; ++i) {
        factor *= 1.015;
    }
    for (int i = dy; i > 0; --i) {
        factor /= 1.015;
    }
    manager.pointerMove(20, 32 + dy);
    const Extents scaled = {-96.0 * factor + 32.0, 32.0 * factor + 32.0, 32.0 * factor + 32.0,
                            -96.0 * factor + 32.0};
    QCOMPARE(extentsOf(manager), scaled);
    QCOMPARE(client.log.size(), 1);

    // the next step begins at 1 again, and about the press again
    manager.pointerMove(70, 32 + dy - 1);
    const Extents after = extentsOf(manager);
    const double width = (scaled[2] - scaled[0]) * 1.015;
    QVERIFY(std::fabs(after[2] - after[0] - width) < 1e-9);
    QVERIFY(std::fabs(toWorld(manager, 96, 32).x() - 32.0) < 1e-9);
    QVERIFY(std::fabs(toWorld(manager, 96, 32).y() - 32.0) < 1e-9);
    QCOMPARE(client.log.size(), 2);
}

void ViewManagerTest::zoomInHasNoFloor()
{
    RecordingClient client;
    ViewManager manager(&client);
    manager.init(0, 0, 100, 100, -50.0, 50.0, 50.0, -50.0);
    manager.setPointerMode(IClient::Zoom);

    manager.pointerDown(50, 50); // the world's origin, where doubles are dense
    manager.pointerMove(50, 2050);
    const Extents extents = extentsOf(manager);
    QVERIFY(extents[2] > 0.0);
    QVERIFY(extents[2] < 50.0 * 1e-12); // 1.015 to the power of -2000 is about 1.2e-13
}

void ViewManagerTest::aZoomBeyondAllNumbersEndsAtOnce()
{
    RecordingClient client;
    ViewManager manager(&client);
    manager.setPointerMode(IClient::Zoom);
    manager.pointerDown(10, smallestInt);
    manager.pointerMove(10, largestInt); // 4294967295 pixels: nothing is left of the extents
    QCOMPARE(extentsOf(manager), startExtents);

    manager.pointerDown(50, largestInt);
    manager.pointerMove(50, smallestInt);
    QVERIFY(!std::isfinite(extentsOf(manager)[0]));
}

void ViewManagerTest::zoomBoxClickLeavesExtentsAndClosesTheBracket()
{
    RecordingClient client;
    ViewManager manager(&client);
    manager.setPointerMode(IClient::ZoomBox);
    client.log.clear();

    manager.pointerDown(40, 40);
    manager.pointerUp(40, 40);

    QCOMPARE(client.log, QStringList({QStringLiteral("begin(zoom)"), QStringLiteral("end")}));
    QCOMPARE(extentsOf(manager), startExtents);
}

void ViewManagerTest::zoomBoxShowsTheMarkedRectangle_data()
{
    QTest::addColumn<QPoint>("down");
    QTest::addColumn<QPoint>("up");
    QTest::addColumn<Extents>("extents");
    const Extents box = {20, 70, 60, 30};
    QTest::newRow("from the top left") << QPoint(30, 50) << QPoint(70, 90) << box;
    QTest::newRow("from the bottom right") << QPoint(70, 90) << QPoint(30, 50) << box;
    QTest::newRow("from the top right") << QPoint(70, 50) << QPoint(30, 90) << box;
    QTest::newRow("from the bottom left") << QPoint(30, 90) << QPoint(70, 50) << box;
    QTest::newRow("a flat box grows to the device's shape")
        << QPoint(30, 80) << QPoint(70, 100) << Extents{20, 50, 60, 10};
}

void ViewManagerTest::zoomBoxShowsTheMarkedRectangle()
{
    QFETCH(QPoint, down);
    QFETCH(QPoint, up);
    QFETCH(Extents, extents);
    RecordingClient client;
    ViewManager manager(&client);
    manager.init(10, 20, 110, 120, 0.0, 100.0, 100.0, 0.0);
    manager.setPointerMode(IClient::ZoomBox);

    manager.pointerDown(down.x(), down.y());
    manager.pointerMove(up.x(), up.y());
    manager.pointerUp(up.x(), up.y());
    QCOMPARE(extentsOf(manager), extents);
}

void ViewManagerTest::zoomBoxOfZeroHeightIsGrown()
{
    RecordingClient client;
    ViewManager manager(&client);
    manager.init(0, 0, 100, 100, 0.0, 100.0, 100.0, 0.0);
    manager.setPointerMode(IClient::ZoomBox);
    client.log.clear();

    manager.pointerDown(40, 50);
    manager.pointerUp(60, 50);
    QCOMPARE(client.log,
             QStringList({QStringLiteral("begin(zoom)"), QStringLiteral("extent(40 60 60 80)"),
                          QStringLiteral("end")}));
}

void ViewManagerTest::zoomBoxTakesTheReleaseAndNotTheLastMove()
{
    RecordingClient client;
    ViewManager manager(&client);
    manager.init(0, 0, 100, 100, 0.0, 100.0, 100.0, 0.0);
    manager.setPointerMode(IClient::ZoomBox);
    client.log.clear();

    manager.pointerDown(20, 20);
    manager.pointerMove(90, 90);
    manager.pointerUp(20, 20);
    QCOMPARE(client.log, QStringList({QStringLiteral("begin(zoom)"), QStringLiteral("end")}));
}

QTEST_GUILESS_MAIN(ViewManagerTest)
#include "ViewManagerTest.moc"
