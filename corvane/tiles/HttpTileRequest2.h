#pragma once

#include <corvane/core/Export.h>
#include <corvane/tiles/TileRequest2.h>

#include <QObject>
#include <QUrl>

namespace Corvane::Map {

/// A tile of a tile matrix set to be fetched over the network.
class CORVANE_EXPORT HttpTileRequest2 : public QObject, public TileRequest2
{
    Q_OBJECT
public:
    /// The parent is ignored: a request belongs to whoever disposes of it.
    explicit HttpTileRequest2(QUrl url = QUrl(), QObject* parent = nullptr);
    ~HttpTileRequest2() override;

    /// What is fetched; may be changed in place before the request is queued.
    QUrl& getUrl();
    /// What is fetched.
    void setUrl(QUrl newUrl);

private:
    QUrl url;
};

} // namespace Corvane::Map
