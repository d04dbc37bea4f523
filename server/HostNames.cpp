#include <server/HostNames.h>

#include <QHostAddress>

namespace Corvane::Server {

namespace {

// In lower case and without the port and the brackets of an IPv6 address.
QByteArray nameOf(const QByteArray& host)
{
    const QByteArray lower = host.trimmed().toLower();
    if (lower.startsWith('[')) {
        return lower.mid(1, lower.indexOf(']') - 1);
    }
    const int colon = lower.indexOf(':');
    return colon < 0 ? lower : lower.left(colon);
}

// Four numbers or an IPv6 address: QHostAddress takes "1" as well.
bool isAddress(const QByteArray& name)
{
    const QHostAddress address(QString::fromLatin1(name));
    return address.protocol() == QAbstractSocket::IPv6Protocol ||
           (address.protocol() == QAbstractSocket::IPv4Protocol && name.count('.') == 3);
}

} // namespace

HostNames HostNames::localAnd(const QStringList& names)
{
    HostNames known;
    known.isOpen = false;
    for (const QString& name : names) {
        known.others.append(name.toUtf8().toLower());
    }
    return known;
}

bool HostNames::admits(const QByteArray& host) const
{
    if (isOpen || host.isEmpty()) {
        return true;
    }
    const QByteArray name = nameOf(host);
    return name == "localhost" || name.endsWith(".localhost") || isAddress(name) ||
           others.contains(name);
}

} // namespace Corvane::Server
