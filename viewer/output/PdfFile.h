#pragma once

#include <QPrinter>
#include <QString>
#include <QTemporaryDir>

namespace Corvane::Viewer {

/// A PDF file that is printed: a file that is there stays until the new one is whole. GUI thread
/// only.
class PdfFile
{
public:
    /// title is what the file says of itself.
    PdfFile(const QString& fileName, const QString& title);

    QPrinter& getPrinter() { return printer; }
    /// Puts what was printed in the file's place. False with *error set on failure.
    bool commit(QString* error);

    static bool hasPdfSuffix(const QString& fileName);

private:
    QString fileName;
    QTemporaryDir folder;
    QPrinter printer;
};

} // namespace Corvane::Viewer
