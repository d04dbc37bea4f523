#pragma once

#include <QString>

class QByteArray;
class QDomDocument;

namespace Corvane::Viewer {

/// Whether the source could be a map document, by its name alone: a file that ends in .cmap, or in
/// .xml, which may be something else. Looks at no file.
bool mayBeMapDocument(const QString& source);

/// How reading a map document ended.
enum class MapReading
{
    Read,
    OtherXml, ///< sound, but not a map: perhaps an image that is described in XML
    Refused   ///< not readable, broken, or made to exhaust the program
};

/// Reads a file of any origin. reason says why it was refused. Sources that are relative files are
/// absolute in the document: their disks are asked here, and not by the layers on the GUI thread. Any
/// thread; slow where the file is, or what it names.
MapReading readMapDocument(const QString& fileName, QDomDocument* document, QString* reason);

/// The same for text that is in memory. Nesting, size and attributes are bounded, and entities are
/// not taken, since a tree of any depth would exhaust the stack when it is walked or freed.
MapReading parseMapDocument(const QByteArray& text, QDomDocument* document, QString* reason);

} // namespace Corvane::Viewer
