#pragma once

#include <QByteArray>
#include <QList>
#include <QStringList>

namespace Corvane::Server {

/// The names by which clients may call the server. A page of a stranger can have its own name resolve
/// to this machine and then reads what the server answers; a browser still tells that name. Any thread.
class HostNames
{
public:
    /// All names.
    HostNames() = default;
    /// Addresses, "localhost" with what ends in it, and these names, in any case.
    static HostNames localAnd(const QStringList& names);

    /// What the header "Host" says: a name or an address, with or without a port. Empty where there
    /// is none, as from old clients.
    bool admits(const QByteArray& host) const;

private:
    bool isOpen = true;
    QList<QByteArray> others; // in lower case
};

} // namespace Corvane::Server
