#pragma once

#include <QByteArray>

class QDomElement;
class QDomDocument;
class QString;

namespace Corvane::Viewer {

/// The document as text, the same for the same document: attributes stand in the order of their
/// names, which QDomDocument's own text leaves to chance. What XML cannot carry is left out.
QByteArray mapDocumentText(const QDomDocument& document);
/// The same for one element.
QByteArray mapElementText(const QDomElement& element);

/// Replaces the file by the text, in one step: whatever happens meanwhile, the file holds the old
/// text or the new. False, with the reason, where that could not be done. Any thread; slow.
bool writeMapDocument(const QString& fileName, const QByteArray& text, QString* reason);

} // namespace Corvane::Viewer
