#pragma once

#include <QString>

namespace Corvane::Viewer {

/// Whether the arguments ask for something that shows no window. Looks only at the words
/// themselves, since the platform must be chosen before Qt can take them apart.
bool asksForNoWindow(int argc, const char* const* argv);

/// The file that "--config" names, as it is written there; empty for none. Settings are read before
/// Qt takes the words apart.
QString configFileOf(int argc, const char* const* argv);

/// Whether a window could be shown: a display is named in the environment, or a platform other
/// than the X server's and Wayland's is asked for. Where there is none Qt would abort.
bool hasDisplay(int argc, const char* const* argv);

/// Whether a person reads what goes to standard output as it comes.
bool writesToTerminal();

/// Turns the tile engine's debug lines off, unless they are asked for or the user has logging
/// rules of their own.
void setUpLogging(bool verbose);

/// Ends the process at once, with what was written flushed: a read that hangs in a server would
/// hold up the orderly way, which waits for the pool.
[[noreturn]] void endNow(int exitCode);

} // namespace Corvane::Viewer
