#include <plugins/imageserver/ImageServerPropertiesPage.h>

#include <plugins/imageserver/ImageGrid.h>
#include <plugins/imageserver/ImageServerLayer.h>

#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>

namespace Corvane::Map {

namespace {

constexpr int stateInterval = 1000; // milliseconds
constexpr int cellDigits = 10;

QLabel* createText(const char* name, QWidget* parent, bool wraps = true)
{
    auto* const label = new QLabel(parent);
    label->setObjectName(QLatin1String(name));
    label->setTextFormat(Qt::PlainText); // it may come from the server
    label->setWordWrap(wraps);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

} // namespace

ImageServerPropertiesPage::ImageServerPropertiesPage(QWidget* parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("imageServerPropertiesPage"));
    setWindowTitle(tr("Image Server"));
    auto* const column = new QVBoxLayout(this);
    column->addWidget(createImage());
    column->addWidget(createServer());
    column->addWidget(createLogin());
    column->addStretch();
    timer.setInterval(stateInterval);
    connect(&timer, &QTimer::timeout, this, &ImageServerPropertiesPage::showState);
    setEnabled(false);
}

QGroupBox* ImageServerPropertiesPage::createImage()
{
    auto* const box = new QGroupBox(tr("Image"), this);
    auto* const form = new QFormLayout(box);
    address = new QLineEdit(box);
    address->setObjectName(QStringLiteral("addressLineEdit"));
    address->setReadOnly(true);
    form->addRow(tr("Address:"), address);
    size = addFact(form, tr("Size:"), "sizeLabel");
    grid = addFact(form, tr("Tiles:"), "gridLabel");
    cells = addFact(form, tr("Cell size:"), "cellSizeLabel");
    system = addFact(form, tr("Coordinate system:"), "coordinateSystemLabel");
    system->setWordWrap(true);
    values = addFact(form, tr("Values:"), "valuesLabel");
    return box;
}

QLabel* ImageServerPropertiesPage::addFact(QFormLayout* form, const QString& title,
                                           const char* name)
{
    QLabel* const fact = createText(name, this, false);
    form->addRow(title, fact);
    return fact;
}

QGroupBox* ImageServerPropertiesPage::createServer()
{
    auto* const box = new QGroupBox(tr("Server"), this);
    auto* const row = new QHBoxLayout(box);
    state = createText("stateLabel", box);
    retryButton = new QPushButton(tr("Try Again"), box);
    retryButton->setObjectName(QStringLiteral("retryButton"));
    retryButton->setAutoDefault(false);
    row->addWidget(state, 1);
    row->addWidget(retryButton);
    connect(retryButton, &QPushButton::clicked, this, &ImageServerPropertiesPage::retry);
    return box;
}

QGroupBox* ImageServerPropertiesPage::createLogin()
{
    auto* const box = new QGroupBox(tr("Login"), this);
    auto* const form = new QFormLayout(box);
    user = new QLineEdit(box);
    user->setObjectName(QStringLiteral("userLineEdit"));
    form->addRow(tr("User:"), user);
    password = new QLineEdit(box);
    password->setObjectName(QStringLiteral("passwordLineEdit"));
    password->setEchoMode(QLineEdit::Password);
    password->setPlaceholderText(tr("unchanged"));
    form->addRow(tr("Password:"), password);
    QLabel* const note = createText("loginNoteLabel", box);
    note->setText(tr("The password is kept until the program ends and stands in no file. Maps hold "
                     "the user's name alone."));
    form->addRow(note);
    return box;
}

void ImageServerPropertiesPage::setLayer(Map::Layer* newLayer)
{
    if (layer) {
        layer->disconnect(this);
    }
    layer = qobject_cast<ImageServerLayer*>(newLayer);
    setEnabled(layer);
    password->clear();
    if (!layer) {
        timer.stop();
        return;
    }
    connect(layer, &TiledRasterLayer::sourceOpened, this, &ImageServerPropertiesPage::showState);
    address->setText(layer->getDataSource());
    address->setToolTip(address->text());
    address->setCursorPosition(0);
    user->setText(layer->getUser());
    showState();
    timer.start();
}

void ImageServerPropertiesPage::showState()
{
    if (!layer) {
        return;
    }
    showFacts();
    state->setText(layer->getSourceState());
    retryButton->setEnabled(layer->canRetry());
}

void ImageServerPropertiesPage::showFacts()
{
    const std::shared_ptr<const ImageGrid> known = layer->getGrid();
    const QString unknown = tr("not known yet");
    const QLocale locale;
    const auto number = [&locale](double value) { return locale.toString(value, 'g', cellDigits); };
    if (!known) {
        for (QLabel* const fact : {size, grid, cells, system, values}) {
            fact->setText(unknown);
        }
        return;
    }
    size->setText(
        tr("%1 x %2 pixels")
            .arg(locale.toString(known->size.width()), locale.toString(known->size.height())));
    grid->setText(tr("%1 x %1 pixels, %n level(s)", nullptr, known->levels).arg(known->tileSize));
    cells->setText(tr("%1 x %2").arg(number(known->cellX), number(-known->cellY)));
    const QString name = known->coordSysName.isEmpty() ? tr("unknown") : known->coordSysName;
    system->setText(known->epsg > 0 ? tr("%1 (EPSG:%2)").arg(name).arg(known->epsg) : name);
    values->setText(
        tr("%n band(s) of %1, %2", nullptr, known->bands).arg(known->cellType, known->colorSpace));
}

void ImageServerPropertiesPage::retry()
{
    if (layer) {
        layer->retryNow();
        showState();
    }
}

// The server is asked anew only where something was changed.
void ImageServerPropertiesPage::apply()
{
    if (layer) {
        layer->setLogin(user->text(), password->text());
        password->clear();
        showState();
    }
}

} // namespace Corvane::Map
