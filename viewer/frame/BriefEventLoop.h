#pragma once

namespace Corvane::Viewer {

/// Runs the event loop for a moment, or until something happens; for polling what sends no signal.
void runEventLoopBriefly();

} // namespace Corvane::Viewer
