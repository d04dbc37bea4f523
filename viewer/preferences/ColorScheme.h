#pragma once

class QString;
class QStringList;

namespace Corvane::Viewer {

/// The schemes by the names that the settings keep: that of the desktop first, then "light", "dark".
QStringList colorSchemes();
/// The scheme that the user chose, or that of the desktop.
QString chosenColorScheme();
/// Keeps the choice, and paints all windows by it at once. GUI thread only.
void chooseColorScheme(const QString& scheme);
/// Paints by the choice of the last run. Before the first window.
void applyColorScheme();

} // namespace Corvane::Viewer
