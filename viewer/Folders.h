#pragma once

class QString;

namespace Corvane::Viewer {

/// The folder in which the last dialog was accepted, the home folder at first. GUI thread only.
QString lastFolder();
/// Keeps the folder of a file for the next dialog.
void keepFolderOf(const QString& fileName);

} // namespace Corvane::Viewer
