#pragma once

class QIcon;
class QString;

namespace Corvane::Map {
struct SourceReport;
}

namespace Corvane::Viewer {

/// How a source is doing in a line: "waiting until 14:03:12 (7 s): connection refused".
QString sourceStateText(const Map::SourceReport& report);
/// The same without a count of seconds: it need not be renewed.
QString lastingStateText(const Map::SourceReport& report);
/// A mark of 16 pixels, different in shape as well as in colour for each state.
QIcon sourceStateIcon(const Map::SourceReport& report);

} // namespace Corvane::Viewer
