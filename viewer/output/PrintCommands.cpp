#include <viewer/output/PrintCommands.h>

#include <viewer/frame/Folders.h>
#include <viewer/maps/MapWindow.h>
#include <viewer/output/MapPicture.h>
#include <viewer/output/MapPrinting.h>
#include <viewer/output/PdfFile.h>

#include <corvane/map/MapView.h>

#include <QAction>
#include <QFileDialog>
#include <QFileInfo>
#include <QLocale>
#include <QMessageBox>
#include <QPageSize>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QProgressDialog>
#include <QTimer>

#include <algorithm>
#include <memory>

namespace Corvane::Viewer {
namespace {

constexpr std::chrono::seconds defaultPatience(60);
constexpr int dotsPerInch = 300; // finer detail of imagery is lost on paper
constexpr qreal margin = 10.0;   // millimetres
constexpr QSize previewSize(900, 700);

QPageSize usualPaper()
{
    const bool letter = QLocale().measurementSystem() == QLocale::ImperialUSSystem;
    return QPageSize(letter ? QPageSize::Letter : QPageSize::A4);
}

void setUpPage(QPrinter& printer, Map::MapView& view)
{
    printer.setResolution(dotsPerInch);
    printer.setPageOrientation(MapPrinting::isLandscape(view) ? QPageLayout::Landscape
                                                              : QPageLayout::Portrait);
}

std::shared_ptr<QPrinter> makePrinter(MapWindow& map)
{
    auto printer = std::make_shared<QPrinter>(QPrinter::HighResolution);
    printer->setDocName(map.getName());
    setUpPage(*printer, *map.getView());
    return printer;
}

} // namespace

PrintCommands::PrintCommands(QWidget* owner) : QObject(owner), patience(defaultPatience)
{
    QAction* printAction = addAction("actionPrint");
    connect(printAction, &QAction::triggered, this, &PrintCommands::print);
    QAction* previewAction = addAction("actionPrintPreview");
    connect(previewAction, &QAction::triggered, this, &PrintCommands::preview);
    QAction* pdfAction = addAction("actionExportPdf");
    connect(pdfAction, &QAction::triggered, this, &PrintCommands::exportPdf);
    setMapWindow(nullptr);
}

/// The program's XML files give it a text, a picture and a key.
QAction* PrintCommands::addAction(const QString& name)
{
    const auto action = new QAction(parent());
    action->setObjectName(name);
    actions << action;
    return action;
}

void PrintCommands::setMapWindow(MapWindow* newWindow)
{
    window = newWindow;
    for (QAction* action : qAsConst(actions)) {
        action->setEnabled(window && window->getView());
    }
}

QList<QAction*> PrintCommands::getActions() const
{
    return actions;
}

void PrintCommands::setPatience(std::chrono::milliseconds time)
{
    patience = time;
}

void PrintCommands::print()
{
    MapWindow* map = window;
    if (!map || !map->getView()) {
        return;
    }
    const std::shared_ptr<QPrinter> printer = makePrinter(*map);
    const auto dialog = new QPrintDialog(printer.get(), map->getDialogParent());
    dialog->setObjectName("printDialog");
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    // later, when the dialog has gone; it keeps the printer until then
    connect(dialog, QOverload<QPrinter*>::of(&QPrintDialog::accepted), map, [this, map, printer] {
        printer->setResolution(std::min(printer->resolution(), dotsPerInch));
        QTimer::singleShot(0, map, [this, map, printer] { printOn(map, *printer); });
    });
    dialog->open();
}

/// The page is loaded before the dialog comes, which paints when it likes. The map's layers belong to
/// the page as long as the dialog is there.
void PrintCommands::preview()
{
    MapWindow* map = window;
    if (!map || !map->getView()) {
        return;
    }
    const std::shared_ptr<QPrinter> printer = makePrinter(*map);
    const auto printing = std::make_shared<MapPrinting>(*map->getView());
    QStringList missing;
    if (!load(map, *printing, *printer, &missing)) {
        return;
    }
    const auto dialog = new QPrintPreviewDialog(printer.get(), map->getDialogParent());
    dialog->setObjectName("printPreviewDialog");
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->resize(previewSize);
    connect(dialog, &QPrintPreviewDialog::paintRequested, map,
            [printing, printer](QPrinter* page) { printing->print(*page, nullptr); });
    dialog->QDialog::open();
    tellWhatIsMissing(dialog, missing);
}

void PrintCommands::exportPdf()
{
    MapWindow* map = window;
    if (!map || !map->getView()) {
        return;
    }
    const auto dialog = new QFileDialog(map->getDialogParent(), tr("Export as PDF"), lastFolder());
    dialog->setObjectName("exportPdfDialog");
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setNameFilters({tr("PDF document (*.pdf)")});
    dialog->setDefaultSuffix("pdf");
    dialog->selectFile(QFileInfo(map->getName()).completeBaseName() + ".pdf");
    connect(dialog, &QFileDialog::fileSelected, map, [this, map](const QString& fileName) {
        keepFolderOf(fileName);
        QTimer::singleShot(0, map, [this, map, fileName] { writePdf(map, fileName); });
    });
    dialog->open();
}

void PrintCommands::writePdf(MapWindow* map, const QString& fileName)
{
    if (!map->getView()) {
        return;
    }
    QString error;
    if (!canWrite(fileName, &error)) {
        showFailure(map, tr("cannot write %1: %2").arg(fileName, error));
        return;
    }
    PdfFile file(fileName, map->getName());
    QPrinter& printer = file.getPrinter();
    printer.setPageSize(usualPaper());
    printer.setPageMargins(QMarginsF(margin, margin, margin, margin), QPageLayout::Millimeter);
    setUpPage(printer, *map->getView());

    MapPrinting printing(*map->getView());
    QStringList missing;
    if (!load(map, printing, printer, &missing)) {
        return;
    }
    printing.print(printer, nullptr);
    if (!file.commit(&error)) {
        showFailure(map, tr("cannot write %1: %2").arg(fileName, error));
        return;
    }
    tellWhatIsMissing(map->getDialogParent(), missing);
}

void PrintCommands::printOn(MapWindow* map, QPrinter& printer)
{
    if (!map->getView()) {
        return;
    }
    MapPrinting printing(*map->getView());
    QStringList missing;
    if (!load(map, printing, printer, &missing)) {
        return;
    }
    const QPointer<QProgressDialog> progress = showProgress(map, tr("Printing..."));
    printing.print(printer, progress);
    delete progress;
    if (printer.printerState() == QPrinter::Error) {
        showFailure(map, tr("The printer does not take the map."));
        return;
    }
    tellWhatIsMissing(map->getDialogParent(), missing);
}

/// False where the user does not want to wait, or the map has gone. *missing are the titles of the
/// layers that did not come.
bool PrintCommands::load(MapWindow* map, MapPrinting& printing, const QPrinter& printer,
                         QStringList* missing)
{
    const QPointer<MapWindow> alive(map);
    const QPointer<QProgressDialog> progress = showProgress(map, tr("Loading the map..."));
    printing.setPatience(patience);
    const MapPrinting::Loading loading = printing.load(printer, *progress);
    delete progress;
    if (!alive || loading == MapPrinting::Loading::Cancelled) {
        return false;
    }
    if (loading == MapPrinting::Loading::Incomplete) {
        *missing = printing.missingLayers();
    }
    return true;
}

/// Keeps the user from changing the map meanwhile.
QProgressDialog* PrintCommands::showProgress(MapWindow* map, const QString& text) const
{
    const auto progress = new QProgressDialog(text, tr("Cancel"), 0, 100, map->getDialogParent());
    progress->setObjectName("printProgress");
    progress->setWindowTitle(tr("Print"));
    progress->setWindowModality(Qt::ApplicationModal);
    progress->setAutoReset(false);
    progress->setAutoClose(false);
    progress->setMinimumDuration(0);
    progress->setValue(0);
    return progress;
}

void PrintCommands::tellWhatIsMissing(QWidget* parent, const QStringList& missing)
{
    if (!missing.isEmpty()) {
        showBox(parent, "printIncomplete",
                tr("Not everything came in time of:\n%1").arg(missing.join('\n')));
    }
}

void PrintCommands::showFailure(MapWindow* map, const QString& text)
{
    showBox(map->getDialogParent(), "printFailure", text);
}

void PrintCommands::showBox(QWidget* parent, const QString& name, const QString& text)
{
    const auto box =
        new QMessageBox(QMessageBox::Warning, tr("Print"), text, QMessageBox::Ok, parent);
    box->setObjectName(name);
    box->setTextFormat(Qt::PlainText);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

} // namespace Corvane::Viewer
