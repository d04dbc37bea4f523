#include <pluginchecker/PluginFile.h>

#include <corvane/core/ILayerEditorPlugin.h>
#include <corvane/core/ILayerPlugin.h>
#include <corvane/core/ILayerPluginInfo.h>
#include <corvane/map/Layer.h>

#include <QFileInfo>
#include <QJsonObject>
#include <QPointer>

namespace Corvane::PluginChecker {

namespace {

// By the id and not by its type, as a plugin of another compiler would be asked.
template <typename Interface>
Interface* answerOf(QObject* root)
{
    return static_cast<Interface*>(root->qt_metacast(qobject_interface_iid<Interface*>()));
}

QString withoutAnswer(const char* id)
{
    return QStringLiteral("the root object does not answer for %1").arg(QLatin1String(id));
}

} // namespace

PluginFile::PluginFile(const QString& path)
{
    loader.setFileName(path); // it keeps the name only where the file is there
}

bool PluginFile::load(QString* error)
{
    if (loader.fileName().isEmpty()) {
        *error = QStringLiteral("there is no such file");
        return false;
    }
    if (loader.metaData().isEmpty()) {
        *error = QStringLiteral("the file holds no plugin: %1").arg(loader.errorString());
        return false;
    }
    rootObject = loader.instance();
    if (!rootObject) {
        *error = QStringLiteral("there is no root object: %1").arg(loader.errorString());
        return false;
    }
    information = answerOf<ILayerPluginInfo>(rootObject);
    making = answerOf<ILayerPlugin>(rootObject);
    editing = answerOf<ILayerEditorPlugin>(rootObject);
    if (!information) {
        *error = withoutAnswer(qobject_interface_iid<ILayerPluginInfo*>());
    } else if (!making) {
        *error = withoutAnswer(qobject_interface_iid<ILayerPlugin*>());
    }
    return information && making;
}

void PluginFile::unload()
{
    const QPointer<QObject> object = rootObject;
    rootObject = nullptr;
    information = nullptr;
    making = nullptr;
    editing = nullptr;
    loader.unload();
    delete object;
}

std::unique_ptr<Map::Layer> PluginFile::createLayer() const
{
    return std::unique_ptr<Map::Layer>(making->createLayer(false));
}

} // namespace Corvane::PluginChecker
