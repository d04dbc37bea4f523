#include <viewer/Folders.h>

#include <corvane/core/Application.h>

#include <QDir>
#include <QFileInfo>
#include <QSettings>

namespace Corvane::Viewer {
namespace {

const char* const folderKey = "Viewer/folder";

} // namespace

QString lastFolder()
{
    return Application::instance()->getSettings()->value(folderKey, QDir::homePath()).toString();
}

void keepFolderOf(const QString& fileName)
{
    Application::instance()->getSettings()->setValue(folderKey, QFileInfo(fileName).absolutePath());
}

} // namespace Corvane::Viewer
