#include <server/BasicAuth.h>

#include <QCryptographicHash>

namespace Corvane::Server {

namespace {

const char scheme[] = "basic ";

// Of one length for all texts, so that comparing tells nothing of theirs.
QByteArray digestOf(const QByteArray& credentials)
{
    return QCryptographicHash::hash(credentials, QCryptographicHash::Sha256);
}

} // namespace

BasicAuth::BasicAuth(const QByteArray& user, const QByteArray& password)
    : expected(digestOf(user + ':' + password))
{
}

bool BasicAuth::admits(const QByteArray& header) const
{
    if (!isNeeded()) {
        return true;
    }
    const int schemeLength = static_cast<int>(sizeof(scheme)) - 1;
    const bool isBasic = header.left(schemeLength).toLower() == scheme;
    const QByteArray given = digestOf(
        isBasic ? QByteArray::fromBase64(header.mid(schemeLength).trimmed()) : QByteArray());
    unsigned int difference = isBasic ? 0 : 1;
    for (int i = 0; i < expected.size(); ++i) {
        difference |=
            static_cast<unsigned char>(given[i]) ^ static_cast<unsigned char>(expected[i]);
    }
    return difference == 0;
}

} // namespace Corvane::Server
