#pragma once

#include <tests/support/PdfPixels.h>
#include <tests/support/PrinterQueue.h>

#include <QByteArray>
#include <QFile>
#include <QImage>
#include <QMarginsF>
#include <QPageLayout>
#include <QPageSize>
#include <QPrinter>
#include <QSize>
#include <QString>
#include <QTemporaryDir>

/// A printer of one pixel a point with a page of this size, without margins: the machine's own, or
/// one that writes a PDF file.
class PointPrinter : public QPrinter
{
public:
    enum Output
    {
        Device,
        Pdf
    };

    explicit PointPrinter(QSize page, Output output = Device)
    {
        if (output == Pdf) {
            setOutputFormat(PdfFormat);
            setOutputFileName(folder.filePath(QStringLiteral("page.pdf")));
        } else {
            PrinterQueue::takeJobs();
        }
        setResolution(pixelsPerInch);
        setPageSize(QPageSize(QSizeF(page), QPageSize::Point, QString(), QPageSize::ExactMatch));
        setPageMargins(QMarginsF(), QPageLayout::Point);
    }

    QRect page() const { return pageLayout().paintRectPixels(resolution()); }
    /// What was printed; of the machine's printer the job that came first.
    QByteArray job() const
    {
        if (outputFormat() == NativeFormat) {
            return PrinterQueue::takeJobs().value(0);
        }
        QFile file(outputFileName());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    QImage pixels() const { return pdfPixels(job(), pixelsPerInch); }

private:
    static constexpr int pixelsPerInch = 72;
    QTemporaryDir folder;
};
