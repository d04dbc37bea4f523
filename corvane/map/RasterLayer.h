#pragma once

#include <corvane/map/Layer.h>

#include <QSize>
#include <QVector>

namespace Corvane::Map {

/// What the panels may ask of image data. The order of the virtual operations and of the
/// properties is part of the contract.
class CORVANE_EXPORT RasterLayer : public Layer
{
    Q_OBJECT
    Q_PROPERTY(double Transparency READ getTransparency WRITE setTransparency)
    Q_PROPERTY(double CellSizeX READ getCellSizeX STORED false)
    Q_PROPERTY(double CellSizeY READ getCellSizeY STORED false)
    Q_PROPERTY(int NumberOfBands READ getNumberOfBands STORED false)
    Q_PROPERTY(QVector<qint32> BandList READ getBandList WRITE setBandList)
    Q_PROPERTY(QSize Size READ getSize STORED false)
    Q_PROPERTY(QString CellType READ getCellType STORED false)
    Q_PROPERTY(bool Opacity READ getOpacity STORED false)
public:
    /// What the numbers of a cell are.
    enum class CellType : int
    {
        Unknown = 0,
        Int8 = 1,
        UInt8 = 2,
        Int16 = 3,
        UInt16 = 4,
        Int32 = 5,
        UInt32 = 6,
        Int64 = 7,
        UInt64 = 8,
        Float = 9,
        Double = 10
    };
    Q_ENUM(CellType)

    /// What the bands mean together.
    enum class ColorSpace : int
    {
        Rgb = 0,
        Greyscale = 1,
        Multiband = 2,
        Unknown = 3
    };
    Q_ENUM(ColorSpace)

    /// client is asked for repaints; it may be null and is not owned.
    explicit RasterLayer(IRendererClient* client);
    ~RasterLayer() override;

    /// World units per full-resolution pixel.
    virtual double getCellSizeX() = 0;
    /// The same on y; negative for a north-up layer.
    virtual double getCellSizeY() = 0;
    /// 0 opaque to 1 invisible.
    virtual double getTransparency() = 0;
    /// 0 opaque to 1 invisible.
    virtual void setTransparency(double transparency) = 0;
    /// Of the source, shown or not.
    virtual int getNumberOfBands() = 0;
    /// The bands that are shown, counted from 1.
    virtual QVector<qint32> getBandList() = 0;
    /// Counted from 1; what a list of another length shows is the plugin's to say.
    virtual void setBandList(QVector<qint32> bands) = 0;
    /// Full-resolution size in pixels.
    virtual QSize getSize() = 0;
    /// A display text.
    virtual QString getCellType() = 0;
    /// Whether the image has an alpha channel or mask.
    virtual bool getOpacity() = 0;
    /// The value that stands for no data, NaN without one.
    virtual double getNoDataValue() = 0;
    /// Degrees, counter-clockwise.
    virtual double getRotation() = 0;
    /// ColorSpace::Unknown where nothing is known.
    virtual ColorSpace getColorSpace() = 0;

    /// The name of the colour space, for people.
    QString colorSpaceToString();
};

} // namespace Corvane::Map
