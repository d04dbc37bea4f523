#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>

namespace Corvane::Map {
class Layer;
}

namespace Corvane::Viewer {

/// Opens one source as a layer. Asks the plugins in turn, one in each turn of the event loop, and
/// waits for a layer that becomes valid only later. Deleting the opener gives up. GUI thread only.
class LayerOpener : public QObject
{
    Q_OBJECT
public:
    /// source is a file, a folder or an address, as the user gave it.
    explicit LayerOpener(const QString& source, QObject* parent = nullptr);
    ~LayerOpener() override;

    /// finished comes later, from the event loop.
    void start();

    /// Without credentials.
    QString getSource() const;
    bool isFinished() const;
    /// Why no plugin opened the source; empty while it is open or opening.
    QString getReason() const;
    /// The layer, valid, once; null where the source could not be opened.
    std::unique_ptr<Map::Layer> takeLayer();

    /// Whether the plugin is there that opens images of image servers.
    static bool opensImagesOfServers();
    /// A source as it may be shown and stored: an address of an image server may end in
    /// "|user|password".
    static QString withoutCredentials(const QString& source);
    /// A short name of a source for titles: the file name, or the last part of an address.
    static QString nameOf(const QString& source);

signals:
    void finished(bool ok);

private slots:
    void tryNext();
    void onSourceOpened(bool ok);

private:
    void passOver();
    void finish();

    QString source;
    QStringList classNames; // still to be tried
    QString reason;
    std::unique_ptr<Map::Layer> layer;
    bool done = false;
};

} // namespace Corvane::Viewer
