#pragma once

class QJsonArray;
class QString;

namespace Corvane::Viewer {

/// What is known of files, for people to read: an indented line for each value.
QString infoText(const QJsonArray& files);

} // namespace Corvane::Viewer
