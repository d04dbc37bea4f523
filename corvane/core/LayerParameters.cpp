#include <corvane/core/LayerParameters.h>

#include <QMap>
#include <QSharedData>
#include <QString>
#include <QStringList>

namespace Corvane::Map {

class LayerParametersData : public QSharedData
{
public:
    QMap<QString, QVariant> values;
};

LayerParameters::LayerParameters() : data(new LayerParametersData) {}

LayerParameters::LayerParameters(const LayerParameters& other) = default;
LayerParameters& LayerParameters::operator=(const LayerParameters& other) = default;
LayerParameters::~LayerParameters() = default;

bool LayerParameters::isEmpty() const
{
    return data->values.isEmpty();
}

QStringList LayerParameters::names() const
{
    return data->values.keys();
}

bool LayerParameters::contains(const QString& name) const
{
    return data->values.contains(name);
}

QVariant LayerParameters::value(const QString& name, const QVariant& defaultValue) const
{
    return data->values.value(name, defaultValue);
}

void LayerParameters::setValue(const QString& name, const QVariant& value)
{
    data->values.insert(name, value);
}

void LayerParameters::remove(const QString& name)
{
    data->values.remove(name);
}

bool LayerParameters::operator==(const LayerParameters& other) const
{
    return data->values == other.data->values;
}

} // namespace Corvane::Map
