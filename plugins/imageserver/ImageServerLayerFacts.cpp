// What an ImageServerLayer answers about its source and settings; how it gets there stands in
// ImageServerLayer.cpp.
#include <plugins/imageserver/ImageServerLayer.h>

#include <plugins/common/SourceReports.h>
#include <plugins/imageserver/ImageServerSource.h>
#include <plugins/imageserver/ServerLogins.h>

#include <QIcon>

#include <algorithm>
#include <limits>

namespace Corvane::Map {

namespace {

constexpr double shortestDeadline = 0.1; // seconds
constexpr double longestDeadline = 600.0;

} // namespace

QString ImageServerLayer::getDataSource()
{
    return dataSource;
}

QIcon ImageServerLayer::getIcon()
{
    return QIcon(QStringLiteral(":/resources/image.png"));
}

QString ImageServerLayer::getFormat()
{
    return tr("Image server");
}

QString ImageServerLayer::getCoordSysName()
{
    return source ? source->grid->coordSysName : QString();
}

QRectF ImageServerLayer::getBounds()
{
    return source ? source->grid->bounds() : QRectF();
}

bool ImageServerLayer::isValid()
{
    return source != nullptr;
}

QString ImageServerLayer::getLastError()
{
    return source && lastError.isEmpty() ? source->health.lastFailure() : lastError;
}

QString ImageServerLayer::getProtocol()
{
    return QUrl(dataSource).scheme().toLower();
}

qint8 ImageServerLayer::getPercentComplete()
{
    return static_cast<qint8>(opening && !source ? 0 : view.percentComplete());
}

double ImageServerLayer::getCellSizeX()
{
    return source ? source->grid->cellX : 0.0;
}

double ImageServerLayer::getCellSizeY()
{
    return source ? source->grid->cellY : 0.0;
}

int ImageServerLayer::getNumberOfBands()
{
    return source ? source->grid->bands : 0;
}

QVector<qint32> ImageServerLayer::getBandList()
{
    if (!source) {
        return {};
    }
    return source->grid->bands >= 3 ? QVector<qint32>{1, 2, 3} : QVector<qint32>{1};
}

void ImageServerLayer::setBandList(QVector<qint32>) {}

QSize ImageServerLayer::getSize()
{
    return source ? source->grid->size : QSize(0, 0);
}

QString ImageServerLayer::getCellType()
{
    return source ? source->grid->cellType : QStringLiteral("Unknown");
}

bool ImageServerLayer::getOpacity()
{
    return source && source->grid->opacity;
}

double ImageServerLayer::getNoDataValue()
{
    return std::numeric_limits<double>::quiet_NaN(); // what has no data comes transparent
}

double ImageServerLayer::getRotation()
{
    return 0.0; // the server turns images north up
}

RasterLayer::ColorSpace ImageServerLayer::getColorSpace()
{
    const QString name = source ? source->grid->colorSpace : QString();
    if (name == QLatin1String("RGB")) {
        return ColorSpace::Rgb;
    }
    if (name == QLatin1String("Greyscale")) {
        return ColorSpace::Greyscale;
    }
    return name == QLatin1String("Multiband") ? ColorSpace::Multiband : ColorSpace::Unknown;
}

QString ImageServerLayer::getUser() const
{
    return credentials.user;
}

void ImageServerLayer::setUser(const QString& user)
{
    if (user == credentials.user) {
        return;
    }
    const ServerCredentials known =
        address ? ServerLogins::find(address->serverName(), user) : ServerCredentials();
    credentials = user.isEmpty() || known.user != user ? ServerCredentials{user, QString()} : known;
    askAnew();
}

QString ImageServerLayer::getPassword() const
{
    return QString();
}

void ImageServerLayer::setPassword(const QString& password)
{
    // panels write back what they have read
    if (!password.isEmpty() && password != credentials.password) {
        credentials.password = password;
        askAnew();
    }
}

void ImageServerLayer::setLogin(const QString& user, const QString& password)
{
    if (password.isEmpty() || user.isEmpty()) {
        setUser(user);
        return;
    }
    if (user != credentials.user || password != credentials.password) {
        credentials = {user, password};
        askAnew();
    }
}

std::shared_ptr<const ImageGrid> ImageServerLayer::getGrid() const
{
    return source ? source->grid : nullptr;
}

double ImageServerLayer::getDeadline() const
{
    return deadline;
}

void ImageServerLayer::setDeadline(double seconds)
{
    // written so that a NaN becomes the shortest
    const double inRange =
        seconds > shortestDeadline ? std::min(seconds, longestDeadline) : shortestDeadline;
    if (inRange != deadline) {
        deadline = inRange;
        askAnew();
    }
}

SourceReport ImageServerLayer::getSourceReport()
{
    const bool isClosed = !source || !lastError.isEmpty();
    return isClosed ? reportClosed(dataSource, bool(opening), opening.retry, lastError)
                    : servedReport(dataSource);
}

void ImageServerLayer::retrySource()
{
    retryNow();
}

QString ImageServerLayer::getSourceState()
{
    if (opening) {
        return tr("opening");
    }
    if (!lastError.isEmpty() || !source) {
        return tr("not open: %1").arg(lastError);
    }
    return source->health.stateText();
}

} // namespace Corvane::Map
