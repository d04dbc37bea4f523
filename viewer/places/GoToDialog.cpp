#include <viewer/places/GoToDialog.h>

#include <viewer/places/PlaceFinder.h>
#include <viewer/places/PlaceMark.h>
#include <viewer/places/ViewMover.h>

#include <corvane/core/Application.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>

namespace Corvane::Viewer {
namespace {

const char* const historyKey = "Viewer/GoToHistory";
constexpr int historyLength = 12;
constexpr int widestCoordinate = 44; // characters
constexpr int explanationLines = 2;

} // namespace

GoToDialog::GoToDialog(Map::MapView* mapView, QWidget* parent)
    : QDialog(parent),
      view(mapView),
      coordinate(new QComboBox(this)),
      understood(new QLabel(this))
{
    setObjectName("goToDialog");
    setWindowTitle(tr("Go to Coordinate"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    build();
    connect(coordinate, &QComboBox::editTextChanged, this, &GoToDialog::explain);
    connect(view, &QObject::destroyed, this, &QDialog::reject);
    connect(view, &Map::MapView::layerAdded, this, &GoToDialog::explain);
    connect(view, &Map::MapView::layerDeleted, this, &GoToDialog::explain, Qt::QueuedConnection);
    explain();
}

void GoToDialog::build()
{
    coordinate->setObjectName("coordinateEdit");
    coordinate->setEditable(true);
    coordinate->setInsertPolicy(QComboBox::NoInsert);
    coordinate->setCompleter(nullptr);
    coordinate->setMinimumContentsLength(widestCoordinate);
    coordinate->addItems(Application::instance()->getSettings()->value(historyKey).toStringList());
    coordinate->setToolTip(
        tr("Latitude and longitude, east and north, a UTM place, or a cell as in "
           "\"col 100 row 200\""));
    coordinate->lineEdit()->setPlaceholderText(tr("52.5163, 13.3777"));
    coordinate->lineEdit()->selectAll();

    understood->setObjectName("understoodLabel");
    understood->setWordWrap(true);
    understood->setMinimumHeight(explanationLines * understood->fontMetrics().lineSpacing());
    understood->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    understood->setTextInteractionFlags(Qt::TextSelectableByMouse);

    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    goButton = buttons->addButton(tr("&Go"), QDialogButtonBox::AcceptRole);
    goButton->setObjectName("goButton");
    goButton->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &GoToDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &GoToDialog::reject);

    auto* const form = new QFormLayout(this);
    form->addRow(tr("&Coordinate:"), coordinate);
    form->addRow(QString(), understood);
    form->addRow(buttons);
    coordinate->setFocus();
}

void GoToDialog::explain()
{
    if (!view) {
        return;
    }
    const FoundPlace place = findPlace(coordinate->currentText(), *view);
    understood->setText(place.explanation);
    goButton->setEnabled(place.isFound);
}

/// A coordinate that was not understood keeps the dialog open.
void GoToDialog::accept()
{
    if (!view) {
        return;
    }
    const FoundPlace place = findPlace(coordinate->currentText(), *view);
    if (!place.isFound) {
        explain();
        coordinate->lineEdit()->selectAll();
        return;
    }
    keepInHistory(coordinate->currentText().trimmed());
    QRectF target = view->getBounds();
    target.moveCenter(place.world);
    ViewMover::move(*view, target);
    PlaceMark::showAt(view, place.world);
    QDialog::accept();
}

void GoToDialog::keepInHistory(const QString& text)
{
    QSettings* const settings = Application::instance()->getSettings();
    QStringList history = settings->value(historyKey).toStringList();
    history.removeAll(text);
    history.prepend(text);
    settings->setValue(historyKey, QStringList(history.mid(0, historyLength)));
}

} // namespace Corvane::Viewer
