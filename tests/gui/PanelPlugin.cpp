#include <corvane/core/ILayerEditorPlugin.h>
#include <corvane/core/ILayerPlugin.h>
#include <corvane/core/ILayerPluginInfo.h>
#include <corvane/gui/Geolink.h>
#include <corvane/gui/HistogramDisplay.h>
#include <corvane/map/IRasterLayerHistogram.h>
#include <tests/map/TestLayers.h>

#include <QAction>
#include <QColor>
#include <QDockWidget>
#include <QIcon>
#include <QObject>
#include <QPixmap>
#include <QPoint>
#include <QToolBar>
#include <QUrl>
#include <QVariant>

#include <algorithm>

/// A raster layer that counts what a test tells it to: the dynamic property "bands" is a list of
/// maps with "name", "counts", "peak" and the statistics. What it is asked for is appended to the
/// dynamic property "asked". Its own properties are of kinds that a panel may and may not know.
class PanelPluginLayer : public TestRasterLayer, public Corvane::Map::IRasterLayerHistogram
{
    Q_OBJECT
    Q_INTERFACES(Corvane::Map::IRasterLayerHistogram)
    Q_PROPERTY(QColor Tint MEMBER tint)
    Q_PROPERTY(QPoint Origin MEMBER origin)
    Q_PROPERTY(QRectF Window MEMBER window)
    Q_PROPERTY(int Gain MEMBER gain)
    Q_PROPERTY(QStringList Tags MEMBER tags)
    Q_PROPERTY(QUrl Page MEMBER page)
    Q_PROPERTY(QVariant Nothing MEMBER nothing)
    Q_PROPERTY(QString WriteOnly WRITE setHidden)
public:
    using Histogram = Corvane::Map::HistogramT<unsigned long long>;

    PanelPluginLayer() { setDescription(QStringLiteral("Layer of a plugin")); }

    void setHidden(const QString& text) { hidden = text; }

    QIcon getIcon() override
    {
        QPixmap pixmap(8, 8);
        pixmap.fill(Qt::red);
        return QIcon(pixmap);
    }

    QVector<Histogram> getHistograms(bool viewport, bool approximate, QSize sampleSize, double tlx,
                                     double tly, double brx, double bry) override
    {
        const bool noRectangle = qIsNaN(tlx) && qIsNaN(tly) && qIsNaN(brx) && qIsNaN(bry);
        setProperty("asked", property("asked").toStringList()
                                 << QStringLiteral("%1 %2 %3x%4 %5")
                                        .arg(viewport ? "viewport" : "image")
                                        .arg(approximate ? "approximate" : "exact")
                                        .arg(sampleSize.width())
                                        .arg(sampleSize.height())
                                        .arg(noRectangle ? "no rectangle" : "rectangle"));
        QVector<Histogram> histograms;
        for (const QVariant& band : property("bands").toList()) {
            histograms << histogramOf(band.toMap());
        }
        return histograms;
    }

private:
    static Histogram histogramOf(const QVariantMap& band)
    {
        const QVariantList counts = band.value("counts").toList();
        Histogram histogram;
        histogram.numberOfBins = static_cast<unsigned int>(counts.size());
        histogram.counts = new unsigned long long[histogram.numberOfBins];
        std::transform(counts.begin(), counts.end(), histogram.counts,
                       [](const QVariant& count) { return count.toULongLong(); });
        histogram.bandName = band.value("name").toString();
        histogram.peakCount = band.value("peak").toULongLong();
        histogram.minimum = band.value("minimum").toULongLong();
        histogram.maximum = band.value("maximum").toULongLong();
        histogram.mean = band.value("mean").toDouble();
        histogram.median = band.value("median").toDouble();
        histogram.standardDeviation = band.value("deviation").toDouble();
        histogram.mode = band.value("mode").toDouble();
        return histogram;
    }

    QColor tint = Qt::green;
    QPoint origin = QPoint(3, 4);
    QRectF window = QRectF(1.0, 2.0, 30.0, 40.0);
    int gain = 7;
    QStringList tags = {QStringLiteral("one"), QStringLiteral("two")};
    QUrl page = QUrl(QStringLiteral("http://127.0.0.1/"));
    QVariant nothing;
    QString hidden;
};

/// A histogram panel whose controls all work.
class LiveHistogramDisplay : public Corvane::Gui::HistogramDisplay
{
    Q_OBJECT
public:
    LiveHistogramDisplay()
    {
        for (const char* name : {"sourceComboBox", "approxCheckBox", "refreshButton"}) {
            findChild<QWidget*>(name)->setEnabled(true);
        }
    }
};

/// A plugin with a layer and panels, for tests of what the library's panels do with those of a
/// plugin.
class PanelPlugin : public QObject,
                    public Corvane::ILayerPlugin,
                    public Corvane::ILayerPluginInfo,
                    public Corvane::ILayerEditorPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.corvane.viewer.ILayerPlugin/1.0")
    Q_INTERFACES(Corvane::ILayerPlugin Corvane::ILayerPluginInfo Corvane::ILayerEditorPlugin)
public:
    Corvane::Map::Layer* createLayer(bool) override { return new PanelPluginLayer; }

    QString getVersion() override { return QStringLiteral("1"); }
    QString getDisplayName() override { return QStringLiteral("Panels"); }
    QString getDescription() override { return QString(); }
    QString getClassName() override { return QStringLiteral("PanelPluginLayer"); }
    QString getVendor() override { return QString(); }
    QString getHelpUrl() override { return QString(); }
    QString getReadFilter() override { return QStringLiteral("Panels (*.panel)"); }
    void setEnabled(bool) override {}
    bool isEnabled() override { return true; }

    QList<QDockWidget*> getDockWidgets() override
    {
        return {dock(new LiveHistogramDisplay, "PanelPluginHistogramDock"),
                dock(new Corvane::Gui::Geolink(nullptr), "PanelPluginGeolinkDock")};
    }
    QList<QWidget*> getLayerPropertyWidgets() override { return {}; }
    QList<QToolBar*> getToolBars() override { return {}; }
    QList<QAction*> getAddLayerActions() override { return {}; }
    QList<QWidget*> getPrefsPages() override { return {}; }

private:
    static QDockWidget* dock(QWidget* panel, const char* name)
    {
        auto* const dock = new QDockWidget;
        dock->setObjectName(name);
        dock->setWidget(panel);
        return dock;
    }
};

#include "PanelPlugin.moc"
