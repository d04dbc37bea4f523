#pragma once

#include <QObject>
#include <QPointer>
#include <QVector>

namespace Corvane::Map {
class Layer;
}

namespace Corvane::Viewer {

/// Follows layers that are in a map already and open only later. GUI thread only.
class LateLayers : public QObject
{
    Q_OBJECT
public:
    explicit LateLayers(QObject* parent = nullptr);

    /// Whether the layer has said nothing yet of how its opening ended, or waits for a server that
    /// does not answer; it is then followed.
    bool follow(Map::Layer* layer);
    /// Whether a layer is still opening for the first time.
    bool areOpening() const;
    /// Whether a layer that is not open waits for its server to be asked again.
    static bool isWaiting(Map::Layer* layer);

signals:
    /// The layer is open, or has failed: its getLastError tells why. A layer that goes before tells
    /// of nothing.
    void ended(Corvane::Map::Layer* layer, bool ok);
    /// The layer's server does not answer: it is asked again, and the layer may open at any time.
    void waits(Corvane::Map::Layer* layer);

private slots:
    void onSourceOpened(bool ok);

private:
    QVector<QPointer<Map::Layer>> opening;
};

} // namespace Corvane::Viewer
