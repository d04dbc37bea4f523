#pragma once

class QString;

namespace Corvane::Viewer {

/// The folder in which the last dialog was accepted, the home folder at first. GUI thread only.
QString lastFolder();
/// Keeps the folder of a file for the next dialog.
void keepFolderOf(const QString& fileName);
/// Where a file of the program's configuration lies: in the folder of the user's language, in
/// English where that has none.
QString configFile(const QString& name);

} // namespace Corvane::Viewer
