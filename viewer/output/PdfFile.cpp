#include <viewer/output/PdfFile.h>

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace Corvane::Viewer {

PdfFile::PdfFile(const QString& name, const QString& title) : fileName(name)
{
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(folder.filePath("page.pdf"));
    printer.setDocName(title);
    printer.setCreator(QCoreApplication::applicationName());
}

bool PdfFile::commit(QString* error)
{
    QFile printed(printer.outputFileName());
    QSaveFile file(fileName);
    if (!folder.isValid()) {
        *error = folder.errorString();
        return false;
    }
    if (!printed.open(QIODevice::ReadOnly)) {
        *error = printed.errorString();
        return false;
    }
    if (!file.open(QIODevice::WriteOnly) || file.write(printed.readAll()) < 0 || !file.commit()) {
        *error = file.errorString();
        return false;
    }
    return true;
}

bool PdfFile::hasPdfSuffix(const QString& fileName)
{
    return QFileInfo(fileName).suffix().compare("pdf", Qt::CaseInsensitive) == 0;
}

} // namespace Corvane::Viewer
