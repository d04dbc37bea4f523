#pragma once

#include <QByteArray>

namespace Corvane::Server {

/// Who may ask. Any thread.
class BasicAuth
{
public:
    /// Everybody may.
    BasicAuth() = default;
    /// Whoever knows both.
    BasicAuth(const QByteArray& user, const QByteArray& password);

    bool isNeeded() const { return !expected.isEmpty(); }
    /// What the header "Authorization" names, of one length for all texts; empty where it names nothing.
    static QByteArray digestOf(const QByteArray& header);
    /// Takes as long for a wrong guess as for a close one.
    bool admits(const QByteArray& digest) const;

private:
    QByteArray expected; // a digest of user and password; empty where nobody is asked
};

} // namespace Corvane::Server
