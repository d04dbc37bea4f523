#pragma once

#include <corvane/core/Export.h>

#include <QMetaType>
#include <QSharedDataPointer>
#include <QVariant>

class QString;
class QStringList;

namespace Corvane::Map {

class LayerParametersData;

/// What a data browser has to say about the layer that it hands over: values by name. An
/// implicitly shared value; any thread, as a value.
class CORVANE_EXPORT LayerParameters
{
public:
    LayerParameters();
    LayerParameters(const LayerParameters& other);
    LayerParameters& operator=(const LayerParameters& other);
    ~LayerParameters();

    bool isEmpty() const;
    /// In alphabetical order.
    QStringList names() const;
    bool contains(const QString& name) const;
    QVariant value(const QString& name, const QVariant& defaultValue = QVariant()) const;
    void setValue(const QString& name, const QVariant& value);
    void remove(const QString& name);

    bool operator==(const LayerParameters& other) const;
    bool operator!=(const LayerParameters& other) const { return !(*this == other); }

private:
    QSharedDataPointer<LayerParametersData> data;
};

} // namespace Corvane::Map

Q_DECLARE_METATYPE(Corvane::Map::LayerParameters)
