#pragma once

#include <QByteArray>
#include <QDomDocument>
#include <QDomNode>
#include <QHash>
#include <QString>
#include <QStringList>
#include <QXmlStreamReader>

#include <functional>
#include <memory>

class QObject;
class QTextDecoder;

namespace Corvane::Gui {

/// Walks through a document piece by piece, so that a large one does not hold up the program. GUI thread.
class XmlWalk
{
public:
    explicit XmlWalk(const QByteArray& data);
    virtual ~XmlWalk();
    XmlWalk(const XmlWalk&) = delete;
    XmlWalk& operator=(const XmlWalk&) = delete;

    /// Walks through a piece. False once there is no more.
    bool readOn();

protected:
    /// Whether the data is XML, down to its end, and not nested too deeply for a tree to be freed with
    /// the stack of a thread.
    bool isWhole() const { return !isBroken; }
    virtual void startElement(const QString& name, const QXmlStreamAttributes& attributes) = 0;
    virtual void endElement() {}
    virtual void addText(const QString&) {}

private:
    bool feed();
    bool take(QXmlStreamReader::TokenType token);

    const QByteArray bytes;
    int fed = 0; // of the bytes
    const std::unique_ptr<QTextDecoder> decoder;
    QXmlStreamReader reader;
    int depth = 0;
    bool isBroken = false;
};

/// Makes a tree of a document.
class XmlReading : public XmlWalk
{
public:
    explicit XmlReading(const QByteArray& data);

    /// Empty where the data is no whole document.
    QDomDocument takeDocument() const { return isWhole() ? document : QDomDocument(); }

private:
    void startElement(const QString& name, const QXmlStreamAttributes& attributes) override;
    void endElement() override;
    void addText(const QString& text) override;

    QDomDocument document;
    QDomNode current; // what is being filled
};

/// Takes the attributes of the first element of each of the names, at any depth, and nothing else.
class FirstElements : public XmlWalk
{
public:
    FirstElements(const QByteArray& data, QStringList names);

    /// False for all names where the data is no whole document.
    bool has(const char* name) const;
    /// Empty where there is none.
    QString attribute(const char* element, const char* name) const;

private:
    void startElement(const QString& name, const QXmlStreamAttributes& attributes) override;

    const QStringList names;
    QHash<QString, QXmlStreamAttributes> elements;
};

/// Calls step until it is false: once at once, and from then on between the other events. Then calls
/// done. Nothing more is called once the owner has gone.
void takeTurns(QObject* owner, const std::function<bool()>& step,
               const std::function<void()>& done);

} // namespace Corvane::Gui
