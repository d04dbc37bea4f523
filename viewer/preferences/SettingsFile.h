#pragma once

class QString;

namespace Corvane::Viewer {

/// Whether settings can be kept in this file: one that can be read and written, or a new one in a
/// folder that is there. False with *reason set where they cannot; nothing is made or changed.
bool canKeepSettings(const QString& fileName, QString* reason);

} // namespace Corvane::Viewer
