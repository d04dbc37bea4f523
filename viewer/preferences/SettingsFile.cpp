#include <viewer/preferences/SettingsFile.h>

#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QTemporaryFile>

namespace Corvane::Viewer {

bool canKeepSettings(const QString& fileName, QString* reason)
{
    const QFileInfo info(fileName);
    const QFileInfo folder(info.absolutePath());
    if (!folder.isDir()) {
        *reason = QString("the folder %1 does not exist").arg(folder.filePath());
        return false;
    }
    if (info.exists() && !info.isFile()) {
        *reason = "it is not a file";
        return false;
    }
    if (info.exists()) {
        QFile file(fileName);
        if (!file.open(QIODevice::ReadWrite)) {
            *reason = file.errorString();
            return false;
        }
        const QSettings settings(fileName, QSettings::IniFormat);
        settings.allKeys(); // which reads the file whole
        if (settings.status() != QSettings::NoError) {
            *reason = "it is not a settings file";
            return false;
        }
    }
    // settings take the place of the old file, which needs a place for the new one beside it
    QTemporaryFile probe(folder.filePath() + "/settings-XXXXXX");
    if (!probe.open()) {
        *reason = QString("the folder %1 cannot be written: %2")
                      .arg(folder.filePath(), probe.errorString());
        return false;
    }
    return true;
}

} // namespace Corvane::Viewer
