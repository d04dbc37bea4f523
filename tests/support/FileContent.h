#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

/// All of a file; nothing where it cannot be read.
inline QByteArray contentOf(const QString& fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
