#include <corvane/gui/FileChooser.h>

#include <corvane/core/Application.h>

#include <QFileInfo>
#include <QList>
#include <QSettings>
#include <QUrl>

namespace Corvane {

namespace {

constexpr char stateKey[] = "Gui/FileChooser/State";
constexpr char lastRasterFilterKey[] = "Gui/FileChooser/LastRasterFilter";

// The list is fixed: it is not built from the plugins, and DOQQ files go by two patterns.
constexpr char imageFilters[] =
    "All Files (*.*);;"
    "All Supported Image Files (*.alg *.vns *.vds *.tif *.tiff *.zwt *.jp2 *.j2k *.jpc *.jpf *.jpx "
    "*.j2c *.img *.doq *.jpg *.png);;"
    "Vantis Algorithm (*.alg);;"
    "Vantis Dataset (*.vns);;"
    "Vantis Virtual Dataset (*.vds);;"
    "Tiff/GeoTiff (*.tif *.tiff);;"
    "Zoned Wavelet Tiles (*.zwt);;"
    "JPEG 2000 (*.jp2 *.j2k *.jpc *.jpf *.jpx *.j2c);;"
    "TAVRO Picta (*.img);;"
    "USGS DOQQ (*.doqq);;"
    "JPEG (*.jpg);;"
    "Portable Network Graphics (*.png)";

// Fixed, too, whatever the machine: an entry whose folder does not exist shows disabled.
constexpr const char* sideBarUrls[] = {
    "file:", // the computer as a whole
    "file:///C:/Documents and Settings/kvoss",
    "file:///C:/Documents and Settings/kvoss/Desktop",
    "file:///C:/Data",
    "file:///E:/Data",
    "file:///C:/Vantis71/examples/Shared_Data",
};

QSettings* applicationSettings()
{
    Application* const application = Application::instance();
    return application ? application->getSettings() : nullptr;
}

} // namespace

bool FileChooser::m_bShowFilePreview = true;
QString FileChooser::m_sLastRasterFilter;
QString FileChooser::m_sLastGenericFilter;
QString FileChooser::m_sLastScriptFilter;
QString FileChooser::m_sLastVectorFilter;

FileChooser::FileChooser(QWidget* parent, const QString& caption, const QString& directory,
                         const QString& filter, bool showPreview)
    : QFileDialog(parent, caption, directory, filter)
{
    m_bShowFilePreview = showPreview;
    setSideBar();
    if (const QSettings* settings = applicationSettings()) {
        // The key holds the geometry: restoreState refuses it, so view mode and history start anew.
        const QByteArray state = settings->value(stateKey).toByteArray();
        restoreState(state);
        restoreGeometry(state);
    }
    if (!directory.isEmpty()) {
        setDirectory(directory);
    }
}

FileChooser::~FileChooser()
{
    if (QSettings* settings = applicationSettings()) {
        settings->setValue(stateKey, saveState());
        settings->setValue(stateKey, saveGeometry()); // over the state: only this is kept
    }
}

QString FileChooser::getOpenFileName(QWidget* parent, QString file)
{
    const QString directory = file.isEmpty() ? QString() : QFileInfo(file).path();
    FileChooser dialog(parent, tr("Open File"), directory, QLatin1String(imageFilters), false);
    dialog.setFileMode(QFileDialog::ExistingFiles); // several can be marked, one is returned
    QSettings* const settings = applicationSettings();
    m_sLastRasterFilter = settings ? settings->value(lastRasterFilterKey).toString() : QString();
    dialog.selectNameFilter(m_sLastRasterFilter);
    if (!file.isEmpty()) {
        dialog.selectFile(file);
    }
    dialog.setSideBar();

    QString chosen;
    if (dialog.exec() == QDialog::Accepted) {
        chosen = dialog.selectedFiles().value(0);
    }
    if (settings) {
        settings->setValue(lastRasterFilterKey, dialog.selectedNameFilter()); // cancelled or not
    }
    return chosen;
}

void FileChooser::setSideBar()
{
    QList<QUrl> urls;
    for (const char* url : sideBarUrls) {
        urls << QUrl(QLatin1String(url));
    }
    setSidebarUrls(urls);
}

} // namespace Corvane
