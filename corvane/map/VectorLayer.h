#pragma once

#include <corvane/map/Layer.h>

#include <QBrush>
#include <QPen>

class QDomElement;
class QGradient;

namespace Corvane::Map {

/// A layer drawn with a pen and a brush, and the functions that turn both into XML and back.
class CORVANE_EXPORT VectorLayer : public Layer
{
    Q_OBJECT
    Q_PROPERTY(QPen pen READ getPen WRITE setPen)
    Q_PROPERTY(QBrush brush READ getBrush WRITE setBrush)
public:
    explicit VectorLayer(IRendererClient* client);
    ~VectorLayer() override;

    QPen getPen();
    void setPen(QPen& pen);
    QBrush getBrush();
    void setBrush(QBrush& brush);

protected:
    /// The pen's colour lives in the child element brush.
    static QDomElement penToXML(QDomDocument& doc, QPen& pen);
    /// A default pen where the element is no pen.
    static QPen penFromXML(QDomElement& element);
    /// A gradient or texture brush keeps only its style's name and a colour.
    static QDomElement brushToXML(QDomDocument& doc, QBrush& brush);
    /// A default brush where the element is no brush.
    static QBrush brushFromXML(QDomElement& element);
    static QDomElement gradientToXML(QDomDocument& doc, QGradient* gradient);
    static QGradient gradientFromXML(QDomElement& element);
    /// An unknown name gives the style with the value 0; so with the three below.
    static Qt::BrushStyle brushStyleFromString(QString& name);
    static Qt::PenStyle penStyleFromString(QString& name);
    static Qt::PenCapStyle penCapStyleFromString(QString& name);
    static Qt::PenJoinStyle penJoinStyleFromString(QString& name);

private:
    QPen pen;
    QBrush brush;
};

} // namespace Corvane::Map
