#include <viewer/places/ScaleBox.h>

#include <viewer/places/ViewMover.h>
#include <viewer/places/ViewScale.h>

#include <corvane/map/MapView.h>

#include <QCompleter>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace Corvane::Viewer {
namespace {

constexpr const char* widestText = "1:999 999 999";
// Of the coordinates: closer neighbours become the same number.
constexpr double finestPart = 1e-12;

} // namespace

ScaleBox::ScaleBox(QWidget* parent) : QComboBox(parent)
{
    setEditable(true);
    setInsertPolicy(NoInsert);
    setCompleter(nullptr); // it would turn 1:25 into the first usual scale
    setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(int(qstrlen(widestText)));
    setAccessibleName(tr("Scale"));
    lineEdit()->setObjectName("scaleEdit");
    connect(this, QOverload<int>::of(&QComboBox::activated), this,
            [this](int index) { apply(itemText(index)); });
    setView(nullptr);
}

void ScaleBox::setView(Map::MapView* newView)
{
    view = newView;
    setEnabled(view != nullptr);
    showScale();
}

/// While the user types, his text stays.
void ScaleBox::refresh()
{
    if (!(lineEdit()->hasFocus() && lineEdit()->isModified())) {
        showScale();
    }
}

void ScaleBox::showScale()
{
    const ViewScale scale = view ? ViewScale::ofView(*view) : ViewScale();
    setCurrentIndex(-1);
    setEditText(scaleText(scale));
    lineEdit()->setModified(false);
    const QString pixel = pixelText(scale);
    setToolTip(pixel.isEmpty() ? tr("Scale of the map")
                               : tr("Scale of the map at its centre: %1").arg(pixel));
}

void ScaleBox::showPopup()
{
    const QString shown = currentText();
    clear();
    addItems(usualScales(view ? ViewScale::ofView(*view) : ViewScale()));
    setMaxVisibleItems(count());
    setCurrentIndex(-1);
    setEditText(shown);
    QComboBox::showPopup();
}

void ScaleBox::apply(const QString& text)
{
    if (!view) {
        return;
    }
    QString reason;
    const ViewScale scale = ViewScale::ofView(*view);
    double unitsPerPixel = readScale(text, scale, &reason);
    const QPointF centre = view->getBounds().center();
    const double reach = std::max(std::abs(centre.x()), std::abs(centre.y()));
    if (unitsPerPixel > 0.0 && unitsPerPixel < reach * finestPart) {
        reason = tr("The map cannot be shown as large as %1.").arg(text);
        unitsPerPixel = 0.0;
    }
    if (scale.unitsPerPixel <= 0.0) {
        reason = tr("The map is empty.");
        unitsPerPixel = 0.0;
    }
    showScale();
    if (unitsPerPixel <= 0.0) {
        lineEdit()->selectAll();
        emit refused(reason);
        return;
    }
    view->setFocus();
    ViewMover::setUnitsPerPixel(*view, unitsPerPixel);
}

bool ScaleBox::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride && isOwn(static_cast<QKeyEvent*>(event)->key())) {
        event->accept();
        return true;
    }
    return QComboBox::event(event);
}

void ScaleBox::focusOutEvent(QFocusEvent* event)
{
    if (event->reason() != Qt::PopupFocusReason) {
        showScale();
    }
    QComboBox::focusOutEvent(event);
}

bool ScaleBox::isOwn(int key) const
{
    return key == Qt::Key_Return || key == Qt::Key_Enter ||
           (key == Qt::Key_Escape && lineEdit()->isModified());
}

void ScaleBox::keyPressEvent(QKeyEvent* event)
{
    if (!isOwn(event->key())) {
        QComboBox::keyPressEvent(event);
        return;
    }
    if (event->key() == Qt::Key_Escape) {
        showScale();
        lineEdit()->selectAll();
    } else {
        apply(currentText());
    }
    event->accept();
}

void ScaleBox::wheelEvent(QWheelEvent* event)
{
    event->ignore();
}

} // namespace Corvane::Viewer
