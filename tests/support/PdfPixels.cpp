#include <tests/support/PdfPixels.h>

#include <QProcess>
#include <QTemporaryDir>
#include <QtDebug>

namespace {

QByteArray outputOf(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished() || process.exitCode() != 0) {
        qWarning().noquote() << program << "failed:" << process.errorString()
                             << process.readAllStandardError();
        return {};
    }
    return process.readAllStandardOutput();
}

QString written(const QByteArray& pdf, const QTemporaryDir& folder)
{
    QFile file(folder.filePath(QStringLiteral("page.pdf")));
    if (!file.open(QIODevice::WriteOnly) || file.write(pdf) != pdf.size()) {
        qWarning().noquote() << file.errorString();
    }
    return file.fileName();
}

} // namespace

QImage pdfFilePixels(const QString& fileName, int pixelsPerInch)
{
    return QImage::fromData(
        outputOf(QStringLiteral("pdftoppm"),
                 {QStringLiteral("-r"), QString::number(pixelsPerInch), QStringLiteral("-f"),
                  QStringLiteral("1"), QStringLiteral("-l"), QStringLiteral("1"), fileName}));
}

QImage pdfPixels(const QByteArray& pdf, int pixelsPerInch)
{
    const QTemporaryDir folder;
    return pdfFilePixels(written(pdf, folder), pixelsPerInch);
}
