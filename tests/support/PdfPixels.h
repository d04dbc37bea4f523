#pragma once

#include <QByteArray>
#include <QImage>

/// The first page of a PDF file as pdftoppm sees it, with so many pixels an inch; null where it is
/// none. Other than QPrinter it knows nothing of what was painted.
QImage pdfPixels(const QByteArray& pdf, int pixelsPerInch);

/// The same of a file by its name.
QImage pdfFilePixels(const QString& fileName, int pixelsPerInch);
