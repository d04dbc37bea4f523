#include <plugins/common/LayerElement.h>

#include <corvane/map/Layer.h>

#include <QCoreApplication>
#include <QDomElement>

namespace Corvane::Map {

QDomNode withoutSourceProperty(const QDomNode& element)
{
    QDomNode node = element.cloneNode();
    QDomElement child = node.firstChildElement(QStringLiteral("param"));
    while (!child.isNull()) {
        const QDomElement next = child.nextSiblingElement(QStringLiteral("param"));
        if (child.attribute(QStringLiteral("name")) == QLatin1String("DataSource")) {
            node.removeChild(child);
        }
        child = next;
    }
    return node;
}

void tellWhyNotOpen(const QDomNode& element, Layer& layer, QString* errors)
{
    QString name = layer.getDataSource();
    QString reason = layer.getLastError();
    if (name.isEmpty()) { // that of a relative file that is missing is gone by now
        name = element.lastChildElement(QStringLiteral("datasource"))
                   .attribute(QStringLiteral("value"));
        reason = name.isEmpty()
                     ? reason
                     : QCoreApplication::translate("LayerElement", "the file does not exist");
    }
    if (!errors->isEmpty()) {
        errors->append(QLatin1Char('\n'));
    }
    errors->append(
        reason.isEmpty()
            ? QCoreApplication::translate("LayerElement", "cannot open %1").arg(name)
            : QCoreApplication::translate("LayerElement", "cannot open %1: %2").arg(name, reason));
}

} // namespace Corvane::Map
