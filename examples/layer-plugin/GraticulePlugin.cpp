#include "GraticulePlugin.h"

#include "GraticuleLayer.h"

QString GraticulePlugin::getClassName()
{
    return QString::fromLatin1(GraticuleLayer::staticMetaObject.className());
}

Corvane::Map::Layer* GraticulePlugin::createLayer(bool)
{
    return new GraticuleLayer;
}
