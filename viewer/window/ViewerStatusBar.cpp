#include <viewer/window/ViewerStatusBar.h>

#include <viewer/maps/LateLayers.h>
#include <viewer/maps/LoadProgress.h>
#include <viewer/maps/MapWindow.h>
#include <viewer/maps/PointerTracker.h>
#include <viewer/places/ScaleBox.h>
#include <viewer/places/ViewScale.h>

#include <corvane/core/Application.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>

#include <QActionGroup>
#include <QLabel>
#include <QMenu>
#include <QProgressBar>
#include <QSettings>
#include <QToolButton>

namespace Corvane::Viewer {
namespace {

constexpr int barWidth = 120;
constexpr int barHeight = 12;
constexpr int labelMargin = 6;
constexpr int messageMilliseconds = 8000;
const char* const formKey = "Viewer/CoordinateForm";

} // namespace

ViewerStatusBar::ViewerStatusBar(QWidget* parent)
    : QStatusBar(parent),
      form(coordinateFormOf(Application::instance()->getSettings()->value(formKey).toString())),
      formButton(new QToolButton(this)),
      forms(new QActionGroup(this)),
      coordinates(addLabel("coordinates", QStringLiteral("00° 00' 00.0000\" N"))),
      scale(new ScaleBox(this)),
      zoom(addLabel("zoom", QStringLiteral("zoom 10,000 %"))),
      progress(new LoadProgress(this)),
      late(new LateLayers(this))
{
    scale->setObjectName("scale");
    addFormButton();
    coordinates->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    addWidget(coordinates, 1); // what the others leave: windows may be narrow
    addPermanentWidget(scale);
    addPermanentWidget(zoom);
    addProgressBar();
    connect(progress, &LoadProgress::changed, this, &ViewerStatusBar::showProgress);
    connect(late, &LateLayers::ended, this, &ViewerStatusBar::showReference);
    connect(scale, &ScaleBox::refused, this,
            [this](const QString& reason) { showMessage(reason, messageMilliseconds); });
    showForms();
}

QLabel* ViewerStatusBar::addLabel(const QString& name, const QString& widestText)
{
    const auto label = new QLabel(this);
    label->setObjectName(name);
    label->setMinimumWidth(label->fontMetrics().horizontalAdvance(widestText) + 2 * labelMargin);
    label->setContentsMargins(labelMargin, 0, labelMargin, 0);
    label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    return label;
}

void ViewerStatusBar::addFormButton()
{
    auto* const menu = new QMenu(formButton);
    menu->setObjectName("coordinateFormMenu");
    menu->setToolTipsVisible(true);
    int widest = 0;
    for (const CoordinateForm offered : coordinateForms()) {
        QAction* const action = menu->addAction(coordinateFormTitle(offered));
        action->setObjectName("coordinateForm_" + coordinateFormKey(offered));
        action->setCheckable(true);
        action->setData(int(offered));
        forms->addAction(action);
        connect(action, &QAction::triggered, this, [this, offered] { chooseForm(offered); });
        formButton->setText(coordinateFormLabel(offered));
        widest = std::max(widest, formButton->sizeHint().width());
    }
    connect(menu, &QMenu::aboutToShow, this, &ViewerStatusBar::showForms);
    formButton->setObjectName("coordinateForm");
    formButton->setAccessibleName(tr("Form of the coordinates"));
    formButton->setMenu(menu);
    formButton->setPopupMode(QToolButton::InstantPopup);
    formButton->setAutoRaise(true);
    formButton->setFocusPolicy(Qt::StrongFocus);
    formButton->setMinimumWidth(widest + labelMargin);
    addWidget(formButton);
}

void ViewerStatusBar::addProgressBar()
{
    bar = new QProgressBar(this);
    bar->setObjectName("progress");
    bar->setFixedSize(barWidth, barHeight);
    bar->setTextVisible(false);
    bar->setToolTip(tr("How much of the map is loaded"));
    QSizePolicy policy = bar->sizePolicy();
    policy.setRetainSizeWhenHidden(true); // the labels must not jump
    bar->setSizePolicy(policy);
    addPermanentWidget(bar);
    bar->hide();
}

void ViewerStatusBar::setMapWindow(MapWindow* newWindow)
{
    if (window && window->getView()) {
        disconnect(window->getView(), nullptr, this, nullptr);
        disconnect(window->getTracker(), nullptr, this, nullptr);
    }
    window = newWindow && newWindow->getView() ? newWindow : nullptr;
    clearCoordinates();
    progress->setView(window ? window->getView() : nullptr);
    scale->setView(window ? window->getView() : nullptr);
    if (window) {
        connectMap();
    }
    showReference();
}

void ViewerStatusBar::connectMap()
{
    Map::MapView* const view = window->getView();
    connect(view, &Map::MapView::mapExtentsChanged, this, &ViewerStatusBar::showScale);
    connect(view, &Map::MapView::layerAdded, this, &ViewerStatusBar::followLayer);
    connect(view, &Map::MapView::layerMoved, this, &ViewerStatusBar::showReference);
    // later: while the signal runs the layer is still there
    connect(view, &Map::MapView::layerDeleted, this, &ViewerStatusBar::showReference,
            Qt::QueuedConnection);
    for (Map::Layer* layer : view->getLayers()) {
        late->follow(layer);
    }
    connect(window->getTracker(), &PointerTracker::moved, this, &ViewerStatusBar::showCoordinates);
    connect(window->getTracker(), &PointerTracker::left, this, &ViewerStatusBar::clearCoordinates);
}

/// One that opens later has its reference only then.
void ViewerStatusBar::followLayer(Map::Layer* layer)
{
    late->follow(layer);
    showReference();
}

/// What depends on the layers.
void ViewerStatusBar::showReference()
{
    showForms();
    showScale();
}

void ViewerStatusBar::chooseForm(CoordinateForm chosen)
{
    form = chosen;
    Application::instance()->getSettings()->setValue(formKey, coordinateFormKey(form));
    showForms();
    if (pointerIsInside) {
        showCoordinates(pointer);
    }
}

/// A form that this map cannot have stays chosen for the next one.
CoordinateForm ViewerStatusBar::shownForm() const
{
    Map::MapView* const view = window ? window->getView() : nullptr;
    return view && whyNoCoordinates(form, *view).isEmpty() ? form : CoordinateForm::Map;
}

void ViewerStatusBar::showForms()
{
    Map::MapView* const view = window ? window->getView() : nullptr;
    for (QAction* action : forms->actions()) {
        const auto offered = CoordinateForm(action->data().toInt());
        const QString reason = view ? whyNoCoordinates(offered, *view) : QString();
        const QString title = coordinateFormTitle(offered);
        action->setText(reason.isEmpty() ? title : tr("%1 (%2)").arg(title, reason));
        action->setEnabled(reason.isEmpty());
        action->setChecked(offered == form);
    }
    formButton->setText(coordinateFormLabel(shownForm()));
    const QString reason = view ? whyNoCoordinates(form, *view) : QString();
    formButton->setToolTip(reason.isEmpty()
                               ? tr("Form of the coordinates")
                               : tr("Form of the coordinates: east and north, as %1").arg(reason));
}

void ViewerStatusBar::showCoordinates(const QPointF& worldPoint)
{
    Map::MapView* view = window ? window->getView() : nullptr;
    if (!view) {
        return;
    }
    pointer = worldPoint;
    pointerIsInside = true;
    const QString text = coordinateText(shownForm(), *view, worldPoint);
    coordinates->setText(text.isEmpty() ? QStringLiteral("–") : text);
}

void ViewerStatusBar::clearCoordinates()
{
    pointerIsInside = false;
    coordinates->clear();
}

void ViewerStatusBar::showScale()
{
    Map::MapView* view = window ? window->getView() : nullptr;
    scale->refresh();
    zoom->setText(view ? zoomText(ViewScale::ofView(*view)) : QString());
}

void ViewerStatusBar::showProgress(int percent)
{
    bar->setValue(percent);
    bar->setVisible(percent < 100);
}

} // namespace Corvane::Viewer
