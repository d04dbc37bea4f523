#include <viewer/window/HelpCommands.h>

#include <viewer/frame/Commands.h>
#include <viewer/frame/Workspace.h>
#include <viewer/window/KeyListDialog.h>

#include <corvane/core/Application.h>

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QUrl>

namespace Corvane::Viewer {

HelpCommands::HelpCommands(Workspace* workspace) : QObject(workspace), window(workspace)
{
    addCommand(window, "actionHelp", [this] { showGuide(); });
    addCommand(window, "actionShortcuts", [this] { showKeys(); });
    addCommand(window, "actionAbout", [this] { showAbout(); });
}

/// Where an installation keeps documentation.
QString HelpCommands::guideFolder()
{
    return QDir::cleanPath(QCoreApplication::applicationDirPath() + '/' + CORVANE_GUIDE_PATH);
}

QString HelpCommands::guideFile()
{
    const QDir folders[] = {QDir(guideFolder()),
                            QDir(QCoreApplication::applicationDirPath() + "/docs")};
    for (const QDir& folder : folders) {
        for (const char* name : {"user-guide.html", "user-guide.md"}) {
            if (folder.exists(name)) {
                return folder.absoluteFilePath(name);
            }
        }
    }
    return QString();
}

void HelpCommands::showGuide()
{
    const QString file = guideFile();
    if (!file.isEmpty() && QDesktopServices::openUrl(QUrl::fromLocalFile(file))) {
        return;
    }
    auto* const box = new QMessageBox(
        QMessageBox::Information, tr("User Guide"),
        file.isEmpty() ? tr("The user guide is not installed. Its place is %1.").arg(guideFolder())
                       : tr("No program is there to show the user guide, which is %1.").arg(file),
        QMessageBox::Ok, window);
    box->setObjectName("guideBox");
    box->setTextFormat(Qt::PlainText);
    box->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

void HelpCommands::showKeys()
{
    auto* const dialog = new KeyListDialog(window, window);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->show();
}

void HelpCommands::showAbout()
{
    const QString guide = guideFile().isEmpty() ? QString() : tr("User guide: %1").arg(guideFile());
    auto* const box = new QMessageBox(
        QMessageBox::NoIcon, tr("About"),
        tr("%1 %2\n\nShows georeferenced imagery far larger than memory.")
            .arg(QCoreApplication::applicationName(), Application::applicationVersion()),
        QMessageBox::Ok, window);
    box->setInformativeText(guide);
    box->setIconPixmap(QPixmap(":/resources/corvanegeospatial.png"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

} // namespace Corvane::Viewer
