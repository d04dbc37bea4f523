#pragma once

#include <QByteArray>
#include <QList>
#include <QRect>
#include <QString>
#include <QStringList>

class QDomDocument;

namespace Corvane::Viewer {

/// One map window as a session keeps it.
struct SessionMap
{
    QString name;        ///< what the window calls it
    QString document;    ///< the file it comes from, or is being read from; empty for none
    QString mapFile;     ///< the map as it was, in the session's folder; empty while it is read
    QStringList opening; ///< sources that were not open yet
    QRect geometry;      ///< in the work space, when it is neither maximised nor minimised
    bool maximized = false;
    bool minimized = false;
    bool active = false;
    bool changed = false; ///< other than in the file
    int missing = 0;      ///< layers of the file that could not be made
};

/// What is open in one program, as text of a file. Plain data for any thread.
struct Session
{
    QByteArray windowGeometry; ///< of the program's window
    QList<SessionMap> maps;

    QByteArray toJson() const;
    /// Takes any text; what it does not hold is left as it is in a new object.
    static Session fromJson(const QByteArray& text);
};

/// The document as the text of a map file, without secrets; the document is changed. Any thread.
QByteArray sessionMapText(QDomDocument& document);

} // namespace Corvane::Viewer
