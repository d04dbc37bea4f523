#include <viewer/frame/Folders.h>

#include <viewer/frame/Languages.h>

#include <corvane/core/Application.h>
#include <corvane/core/Config.h>

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

QString configFile(const QString& name)
{
    // there may be one for a language that the program does not speak otherwise
    const QDir ofDesktop = Config::GetDirectory(ConfigDirConfig);
    if (chosenLanguage().isEmpty() && ofDesktop.exists(name)) {
        return ofDesktop.filePath(name);
    }
    const QString all = ofDesktop.filePath("../");
    const QString spoken = QDir::cleanPath(all + spokenLanguage().folder + '/' + name);
    return QFileInfo::exists(spoken) ? spoken : QDir::cleanPath(all + "english/" + name);
}

} // namespace Corvane::Viewer
