#include <viewer/session/Session.h>

#include <viewer/maps/MapDocumentWriter.h>
#include <viewer/maps/Secrets.h>

#include <QDomDocument>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace Corvane::Viewer {
namespace {

constexpr int formatVersion = 1;

QJsonObject mapToJson(const SessionMap& map)
{
    QStringList opening;
    for (const QString& source : map.opening) {
        opening << withoutSecrets(source);
    }
    const QRect& place = map.geometry;
    return {{"name", withoutSecrets(map.name)},
            {"document", map.document},
            {"map", map.mapFile},
            {"opening", QJsonArray::fromStringList(opening)},
            {"geometry", QJsonArray{place.x(), place.y(), place.width(), place.height()}},
            {"maximized", map.maximized},
            {"minimized", map.minimized},
            {"active", map.active},
            {"changed", map.changed},
            {"missing", map.missing}};
}

SessionMap mapFromJson(const QJsonObject& object)
{
    SessionMap map;
    map.name = object["name"].toString();
    map.document = object["document"].toString();
    map.mapFile = object["map"].toString();
    for (const QJsonValue& source : object["opening"].toArray()) {
        map.opening << source.toString();
    }
    const QJsonArray place = object["geometry"].toArray();
    map.geometry =
        QRect(place.at(0).toInt(), place.at(1).toInt(), place.at(2).toInt(), place.at(3).toInt());
    map.maximized = object["maximized"].toBool();
    map.minimized = object["minimized"].toBool();
    map.active = object["active"].toBool();
    map.changed = object["changed"].toBool();
    map.missing = object["missing"].toInt();
    return map;
}

void takeSecretsOut(QDomElement element)
{
    const QDomNamedNodeMap attributes = element.attributes();
    for (int i = 0; i < attributes.count(); ++i) {
        QDomAttr attribute = attributes.item(i).toAttr();
        attribute.setValue(withoutSecrets(attribute.value()));
    }
    if (element.tagName() == "param" &&
        element.attribute("name").contains("password", Qt::CaseInsensitive))
    {
        element.setAttribute("value", QString());
    }
    for (QDomNode child = element.firstChild(); !child.isNull(); child = child.nextSibling()) {
        if (child.isElement()) {
            takeSecretsOut(child.toElement());
        } else if (child.isCharacterData()) {
            child.setNodeValue(withoutSecrets(child.nodeValue()));
        }
    }
}

} // namespace

QByteArray Session::toJson() const
{
    QJsonArray array;
    for (const SessionMap& map : maps) {
        array.append(mapToJson(map));
    }
    const QJsonObject object{{"version", formatVersion},
                             {"window", QString::fromLatin1(windowGeometry.toBase64())},
                             {"maps", array}};
    return QJsonDocument(object).toJson(QJsonDocument::Indented);
}

Session Session::fromJson(const QByteArray& text)
{
    const QJsonObject object = QJsonDocument::fromJson(text).object();
    Session session;
    if (object["version"].toInt() != formatVersion) {
        return session;
    }
    session.windowGeometry = QByteArray::fromBase64(object["window"].toString().toLatin1());
    for (const QJsonValue& map : object["maps"].toArray()) {
        session.maps << mapFromJson(map.toObject());
    }
    return session;
}

// Any thread.
QByteArray sessionMapText(QDomDocument& document)
{
    takeSecretsOut(document.documentElement());
    return mapDocumentText(document);
}

} // namespace Corvane::Viewer
