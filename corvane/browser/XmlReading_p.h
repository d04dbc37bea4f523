#pragma once

#include <QByteArray>
#include <QDomDocument>
#include <QDomNode>
#include <QXmlStreamReader>

#include <functional>
#include <memory>

class QObject;
class QTextDecoder;

namespace Corvane::Gui {

/// Reads a document piece by piece, so that a large one does not hold up the program. GUI thread.
class XmlReading
{
public:
    explicit XmlReading(const QByteArray& data);
    ~XmlReading();

    /// Reads a piece. False once there is no more.
    bool readOn();
    /// Empty where the data is not XML, down to its end, or nested too deeply to be freed with the
    /// stack of a thread.
    QDomDocument takeDocument() const { return isBroken ? QDomDocument() : document; }

private:
    bool feed();
    bool take(QXmlStreamReader::TokenType token);
    void startElement();
    void addText();

    const QByteArray bytes;
    int fed = 0; // of the bytes
    const std::unique_ptr<QTextDecoder> decoder;
    QXmlStreamReader reader;
    QDomDocument document;
    QDomNode current; // what is being filled
    int depth = 0;
    bool isBroken = false;
};

/// Calls step until it is false: once at once, and from then on between the other events. Then calls
/// done. Nothing more is called once the owner has gone.
void takeTurns(QObject* owner, const std::function<bool()>& step,
               const std::function<void()>& done);

} // namespace Corvane::Gui
