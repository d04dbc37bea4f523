#pragma once

#include <QComboBox>
#include <QPointer>

namespace Corvane::Map {
class MapView;
}

namespace Corvane::Viewer {

/// Shows how large a map is shown, and shows it as large as the user types or chooses. GUI thread
/// only.
class ScaleBox : public QComboBox
{
    Q_OBJECT
public:
    explicit ScaleBox(QWidget* parent = nullptr);

    /// The map to tell of; null for none.
    void setView(Map::MapView* newView);
    /// The scale has changed.
    void refresh();
    void showPopup() override;

signals:
    /// What was typed is no scale of this map.
    void refused(const QString& reason);

protected:
    bool event(QEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    /// Enter shows the typed scale, Escape brings the present one back.
    void keyPressEvent(QKeyEvent* event) override;
    /// The wheel is the map's, and no scale is chosen by accident.
    void wheelEvent(QWheelEvent* event) override;

private:
    void showScale();
    void apply(const QString& text);
    bool isOwn(int key) const;

    QPointer<Map::MapView> view;
};

} // namespace Corvane::Viewer
