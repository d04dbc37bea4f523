#pragma once

#include <plugins/common/PoolJob.h>
#include <plugins/webtiles/TileTemplate.h>
#include <plugins/webtiles/WebTileSource.h>

#include <QDialog>

#include <memory>

namespace Ui {
class AddWebTilesDialog;
}

namespace Corvane::Map {

class WebTileLayer;
struct TileAnswer;

/// Asks for a source of web tiles, and shows a tile of it before it can be added. GUI thread only;
/// the test runs on the pool, and ends when the dialog goes.
class AddWebTilesDialog : public QDialog
{
    Q_OBJECT
public:
    explicit AddWebTilesDialog(QWidget* parent = nullptr);
    ~AddWebTilesDialog() override;

    /// A new layer with what was entered; the caller owns it. Null where its source does not open.
    std::unique_ptr<WebTileLayer> makeLayer() const;

signals:
    /// A test has ended; ok with a picture.
    void tested(bool ok);

private slots:
    void takeAnswer();

private:
    void connectWidgets();
    void setTested(bool ok);
    void startTest();
    void dropTest();
    void forgetTest();
    QString enteredUrl() const;
    WebTileSettings enteredSettings() const;
    WebTile testTile() const;

    Ui::AddWebTilesDialog* ui; // owned
    std::shared_ptr<PoolJob<TileAnswer>> test;
};

} // namespace Corvane::Map
