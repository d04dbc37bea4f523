#include <viewer/maps/LayerOpener.h>

#include <corvane/core/ILayerPluginInfo.h>
#include <corvane/core/PluginManager.h>
#include <corvane/map/Layer.h>

#include <QDir>
#include <QFileInfo>
#include <QMetaObject>
#include <QUrl>

#include <algorithm>

namespace Corvane::Viewer {
namespace {

// A layer that opens off the GUI thread announces it with this signal.
const char* const openedSignature = "sourceOpened(bool)";
const char* const imageServerClass = "Corvane::Map::ImageServerLayer";

QString suffixOf(const QString& source)
{
    const QUrl url(source);
    return QFileInfo(url.isRelative() ? source : url.path()).suffix();
}

/// Whether nothing but an image of an image server can be meant.
bool isStreamed(const QString& source)
{
    return source.startsWith("zwtp://", Qt::CaseInsensitive) ||
           source.startsWith("zwtps://", Qt::CaseInsensitive);
}

bool isWebAddress(const QString& source)
{
    return isStreamed(source) || source.startsWith("http://", Qt::CaseInsensitive) ||
           source.startsWith("https://", Qt::CaseInsensitive);
}

/// The class that claims the suffix first, then every enabled plugin's in list order.
QStringList candidatesFor(const QString& source)
{
    QStringList names;
    if (isStreamed(source)) {
        return {imageServerClass}; // the source may end in a password, which is no other's business
    }
    const QString suffix = suffixOf(source);
    // every filter contains the empty suffix
    if (!suffix.isEmpty()) {
        names << PluginManager::findLayerClassname(suffix);
    }
    const auto plugins = PluginManager::getLayerPluginInfoList();
    for (ILayerPluginInfo* plugin : plugins) {
        if (plugin->isEnabled()) {
            names << plugin->getClassName();
        }
    }
    names.removeAll(QString());
    names.removeDuplicates();
    return names;
}

} // namespace

LayerOpener::LayerOpener(const QString& newSource, QObject* parent)
    : QObject(parent),
      source(newSource)
{
}

LayerOpener::~LayerOpener() = default;

void LayerOpener::start()
{
    classNames = candidatesFor(source);
    QMetaObject::invokeMethod(this, &LayerOpener::tryNext, Qt::QueuedConnection);
}

QString LayerOpener::getSource() const
{
    return withoutCredentials(source);
}

bool LayerOpener::isFinished() const
{
    return done;
}

QString LayerOpener::getReason() const
{
    return reason;
}

std::unique_ptr<Map::Layer> LayerOpener::takeLayer()
{
    return done ? std::move(layer) : nullptr;
}

bool LayerOpener::opensImagesOfServers()
{
    const auto plugins = PluginManager::getLayerPluginInfoList();
    return std::any_of(plugins.begin(), plugins.end(), [](ILayerPluginInfo* plugin) {
        return plugin->isEnabled() && plugin->getClassName() == imageServerClass;
    });
}

QString LayerOpener::withoutCredentials(const QString& source)
{
    return isWebAddress(source) ? source.section('|', 0, 0) : source;
}

QString LayerOpener::nameOf(const QString& fullSource)
{
    const QString source = withoutCredentials(fullSource);
    const QUrl url(source);
    const QString path = url.isRelative() || url.isLocalFile() ? source : url.path();
    const QString name = QFileInfo(path.endsWith('/') ? path.chopped(1) : path).fileName();
    return name.isEmpty() ? source : name;
}

void LayerOpener::tryNext()
{
    if (classNames.isEmpty()) {
        if (reason.isEmpty()) {
            reason = tr("no plugin reads it");
        }
        finish();
        return;
    }

    const QString className = classNames.takeFirst();
    layer.reset(PluginManager::createLayer(className, false));
    if (!layer) {
        passOver();
        return;
    }
    // the disk of an absolute path may not answer, and need not be asked
    const bool relativeFile = !QDir::isAbsolutePath(source) && QFileInfo::exists(source);
    const bool accepted =
        layer->setDataSource(relativeFile ? QFileInfo(source).absoluteFilePath() : source);
    if (accepted && layer->isValid()) {
        finish();
        return;
    }
    const bool opensLater = accepted && layer->metaObject()->indexOfSignal(openedSignature) >= 0;
    if (opensLater) {
        connect(layer.get(), SIGNAL(sourceOpened(bool)), this, SLOT(onSourceOpened(bool)));
    } else {
        passOver();
    }
}

void LayerOpener::onSourceOpened(bool ok)
{
    disconnect(layer.get(), nullptr, this, nullptr);
    if (ok && layer->isValid()) {
        finish();
    } else {
        passOver();
    }
}

/// Keeps the first reason, which is that of the plugin that claims the suffix, and goes on.
void LayerOpener::passOver()
{
    if (layer) {
        if (reason.isEmpty()) {
            reason = layer->getLastError();
        }
        layer.release()->deleteLater(); // it may be the sender
    }
    QMetaObject::invokeMethod(this, &LayerOpener::tryNext, Qt::QueuedConnection);
}

void LayerOpener::finish()
{
    done = true;
    const bool ok = layer != nullptr;
    if (ok) {
        reason.clear();
        if (layer->getDescription().isEmpty()) {
            layer->setDescription(nameOf(source));
        }
    }
    QMetaObject::invokeMethod(
        this, [this, ok] { emit finished(ok); }, Qt::QueuedConnection);
}

} // namespace Corvane::Viewer
