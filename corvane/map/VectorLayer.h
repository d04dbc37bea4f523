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
    /// client is asked for repaints; it may be null and is not owned.
    explicit VectorLayer(IRendererClient* client);
    ~VectorLayer() override;

    /// For lines and outlines.
    QPen getPen();
    /// A plain store: who sets it asks for a repaint.
    void setPen(QPen& pen);
    /// For areas.
    QBrush getBrush();
    /// A plain store: who sets it asks for a repaint.
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
    /// Holds the gradient's type and nothing else.
    static QDomElement gradientToXML(QDomDocument& doc, QGradient* gradient);
    /// A default gradient.
    static QGradient gradientFromXML(QDomElement& element);
    /// An unknown name gives the style with the value 0; so with the three below.
    static Qt::BrushStyle brushStyleFromString(QString& name);
    /// The case of letters counts.
    static Qt::PenStyle penStyleFromString(QString& name);
    /// The case of letters counts.
    static Qt::PenCapStyle penCapStyleFromString(QString& name);
    /// The case of letters counts.
    static Qt::PenJoinStyle penJoinStyleFromString(QString& name);

private:
    QPen pen;
    QBrush brush;
};

} // namespace Corvane::Map
