#pragma once

#include <QWidget>

class QLabel;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace Corvane::Map {
class Layer;
}

namespace Corvane::Viewer {

class SourceWatch;
struct WatchedSource;

/// Lists the remote layers of all maps with their servers and how these are doing, and has them asked
/// again. It is renewed only while it is shown. GUI thread only.
class SourcesPanel : public QWidget
{
    Q_OBJECT
public:
    /// watch must outlive the panel.
    explicit SourcesPanel(SourceWatch* watch, QWidget* parent = nullptr);

protected:
    void showEvent(QShowEvent* event) override;

private:
    void createList();
    QWidget* createButtons();
    void renew();
    void fill(QTreeWidgetItem& row, const WatchedSource& source) const;
    void enableButtons();
    void tryAgain();
    Map::Layer* selectedLayer() const;

    SourceWatch* watch; // not owned
    QTreeWidget* list = nullptr;
    QLabel* nothing = nullptr; // in place of an empty list
    QPushButton* tryAgainButton = nullptr;
    QPushButton* tryAllButton = nullptr;
};

} // namespace Corvane::Viewer
