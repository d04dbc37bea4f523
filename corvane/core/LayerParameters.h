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
    /// Shares the values until one of the two is changed.
    LayerParameters(const LayerParameters& other);
    /// Shares the values until one of the two is changed.
    LayerParameters& operator=(const LayerParameters& other);
    ~LayerParameters();

    /// Whether there is no value.
    bool isEmpty() const;
    /// In alphabetical order.
    QStringList names() const;
    /// Names are compared exactly.
    bool contains(const QString& name) const;
    /// The value of this name, defaultValue where there is none.
    QVariant value(const QString& name, const QVariant& defaultValue = QVariant()) const;
    /// Takes the place of a value of the same name.
    void setValue(const QString& name, const QVariant& value);
    /// Does nothing where there is no such name.
    void remove(const QString& name);

    /// Whether names and values are the same.
    bool operator==(const LayerParameters& other) const;
    /// Whether a name or a value differs.
    bool operator!=(const LayerParameters& other) const { return !(*this == other); }

private:
    QSharedDataPointer<LayerParametersData> data;
};

} // namespace Corvane::Map

Q_DECLARE_METATYPE(Corvane::Map::LayerParameters)
