#pragma once

#include <QStringList>

class QMimeData;
class QUrl;

namespace Corvane::Viewer {

/// A source as the program knows it: the path of a local file, else the address.
QString sourceOf(const QUrl& url);
/// The same of a text that a person or another program wrote: without space around it, a file: URL
/// as the path.
QString sourceOf(const QString& text);
/// What data that is dropped or pasted names: its URLs, else the addresses and absolute paths of its
/// text, one on each line. Looks at no file.
QStringList sourcesOf(const QMimeData* data);

/// The source independent of the working folder. Addresses, and names that only a plugin
/// understands, stay as they are. Looks for a relative file.
QString absoluteSource(const QString& source);

/// Whether the source has the form "scheme://rest".
bool isAddress(const QString& source);

} // namespace Corvane::Viewer
