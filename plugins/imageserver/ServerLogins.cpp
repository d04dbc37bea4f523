#include <plugins/imageserver/ServerLogins.h>

#include <QHash>
#include <QVector>

#include <algorithm>

namespace Corvane::Map::ServerLogins {

namespace {

// By server; the user that was accepted last comes first.
QHash<QString, QVector<ServerCredentials>>& logins()
{
    static QHash<QString, QVector<ServerCredentials>> all;
    return all;
}

} // namespace

ServerCredentials find(const QString& serverName, const QString& user)
{
    const QVector<ServerCredentials> known = logins().value(serverName);
    const auto found =
        std::find_if(known.begin(), known.end(), [&user](const ServerCredentials& one) {
            return user.isEmpty() || one.user == user;
        });
    return found == known.end() ? ServerCredentials() : *found;
}

void remember(const QString& serverName, const ServerCredentials& credentials)
{
    if (credentials.isEmpty()) {
        return;
    }
    QVector<ServerCredentials>& known = logins()[serverName];
    known.erase(std::remove_if(known.begin(), known.end(),
                               [&credentials](const ServerCredentials& one) {
                                   return one.user == credentials.user;
                               }),
                known.end());
    known.prepend(credentials);
}

void forgetAll()
{
    logins().clear();
}

} // namespace Corvane::Map::ServerLogins
