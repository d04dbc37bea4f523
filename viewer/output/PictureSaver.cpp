#include <viewer/output/PictureSaver.h>

#include <viewer/frame/Folders.h>
#include <viewer/output/MapPicture.h>

#include <corvane/core/Application.h>

#include <QCoreApplication>
#include <QDateTime>
#include <QFileDialog>
#include <QFileInfo>
#include <QImage>
#include <QMessageBox>
#include <QPointer>
#include <QThreadPool>

namespace Corvane::Viewer::PictureSaver {
namespace {

void showFailure(const QString& fileName, const QString& reason, QWidget* parent)
{
    const auto box = new QMessageBox(
        QMessageBox::Warning, QCoreApplication::translate("PictureSaver", "Save Picture"),
        QCoreApplication::translate("PictureSaver", "cannot write %1: %2").arg(fileName, reason),
        QMessageBox::Ok, parent);
    box->setObjectName("saveFailure");
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

/// Encoding a large view takes longer than the window may stand still.
void saveOnAnotherThread(const QImage& picture, const QString& fileName, QWidget* parent)
{
    const QPointer<QWidget> window(parent);
    QThreadPool::globalInstance()->start([picture, fileName, window] {
        QString error;
        if (writePicture(picture, fileName, &error)) {
            return;
        }
        QMetaObject::invokeMethod(
            qApp, [fileName, error, window] { showFailure(fileName, error, window); },
            Qt::QueuedConnection);
    });
}

} // namespace

void askAndSave(const QImage& picture, const QString& name, QWidget* parent)
{
    const auto dialog = new QFileDialog(
        parent, QCoreApplication::translate("PictureSaver", "Save Picture"), lastFolder());
    dialog->setObjectName("pictureDialog");
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setNameFilters(
        {QCoreApplication::translate("PictureSaver", "PNG picture (*.png)"),
         QCoreApplication::translate("PictureSaver", "JPEG picture (*.jpg *.jpeg)")});
    dialog->setDefaultSuffix("png");
    dialog->selectFile(QFileInfo(name).completeBaseName() + ".png");
    QObject::connect(dialog, &QFileDialog::filterSelected, dialog, [dialog](const QString& filter) {
        dialog->setDefaultSuffix(filter.contains("*.jpg") ? "jpg" : "png");
    });
    QObject::connect(
        dialog, &QFileDialog::fileSelected, parent, [picture, parent](const QString& fileName) {
            keepFolderOf(fileName);
            if (hasPictureSuffix(fileName)) {
                saveOnAnotherThread(picture, fileName, parent);
            } else {
                showFailure(fileName,
                            QCoreApplication::translate("PictureSaver", "the name must end in .%1")
                                .arg(pictureSuffixes().join(", .")),
                            parent);
            }
        });
    dialog->open();
}

} // namespace Corvane::Viewer::PictureSaver
