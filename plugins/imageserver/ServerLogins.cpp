#include <plugins/imageserver/ServerLogins.h>

#include <QHash>

namespace Corvane::Map::ServerLogins {

namespace {

QHash<QString, ServerCredentials>& logins()
{
    static QHash<QString, ServerCredentials> all;
    return all;
}

} // namespace

ServerCredentials find(const QString& serverName, const QString& user)
{
    const ServerCredentials known = logins().value(serverName);
    return user.isEmpty() || known.user == user ? known : ServerCredentials();
}

void remember(const QString& serverName, const ServerCredentials& credentials)
{
    if (!credentials.isEmpty()) {
        logins().insert(serverName, credentials);
    }
}

void forgetAll()
{
    logins().clear();
}

} // namespace Corvane::Map::ServerLogins
