#pragma once

#include <corvane/core/Export.h>

#include <QStringList>

class QDir;
class QString;

namespace Corvane {

/// The directories of an installation.
enum ConfigDirType : int
{
    ConfigDirDefault = 0,     ///< the program's own directory
    ConfigDirApplication = 1, ///< the program's own directory
    ConfigDirLibrary = 2,
    ConfigDirConfig = 3, ///< the window description files in the system's language
    ConfigDirScripts = 4,
    ConfigDirIcons = 5,
    ConfigDirRoot = 6, ///< two levels above the program
    ConfigDirPlugins = 7,
    ConfigDirHome = 8,
    ConfigDirTemp = 9
};

/// Where things are: the directories follow from the program's place alone, so that an
/// installation can be moved as a whole. Each object holds a dataset search path of its own,
/// which nothing stores.
class CORVANE_EXPORT Config
{
public:
    /// Needs the application object. The directory may not exist.
    static QDir GetDirectory(ConfigDirType type);
    /// The system's language in lower-case English, such as "german".
    static QString GetLanguage();

    /// Appends the cleaned path, a second time too. False where there is no such folder.
    bool AddDatasetSearchPath(QString path);
    /// Removes the first such entry; false where there is none.
    bool RemoveDatasetSearchPath(QString path);
    /// The folders added so far, in their order.
    QStringList GetDatasetSearchPath();
    /// The entries joined by ";".
    QString GetDatasetSearchPathAsString();

private:
    QStringList datasetSearchPath;
};

} // namespace Corvane
