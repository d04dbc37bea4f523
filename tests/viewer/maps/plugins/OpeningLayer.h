#pragma once

#include <tests/map/TestLayers.h>

#include <QTimer>

/// Opens its source in the way that the source's name asks for:
/// "NAME-now" at once, "NAME-later" and "NAME-fails" with sourceOpened from the event loop,
/// "NAME-silent" is accepted and never becomes valid. Everything else is refused.
/// NAME is that of the plugin.
template <typename Base>
class OpeningLayer : public Base
{
public:
    explicit OpeningLayer(const QString& plugin) : name(plugin) { this->valid = false; }

    bool setDataSource(QString source) override
    {
        this->dataSource = source;
        if (source.contains(name + "-now")) {
            this->valid = true;
        } else if (source.contains(name + "-later") || source.contains(name + "-fails")) {
            const bool ok = source.contains("-later");
            QTimer::singleShot(0, this, [this, ok] {
                this->valid = ok;
                this->lastError = ok ? QString() : name + " failed later";
                QMetaObject::invokeMethod(this, "sourceOpened", Q_ARG(bool, ok));
            });
        } else if (!source.contains(name + "-silent")) {
            this->lastError = name + " refuses";
            return false;
        }
        return true;
    }

private:
    const QString name;
};
