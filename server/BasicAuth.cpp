#include <server/BasicAuth.h>

#include <QCryptographicHash>

namespace Corvane::Server {

namespace {

const char scheme[] = "basic ";

// Of one length for all texts, so that comparing tells nothing of theirs.
QByteArray hashOf(const QByteArray& credentials)
{
    return QCryptographicHash::hash(credentials, QCryptographicHash::Sha256);
}

} // namespace

BasicAuth::BasicAuth(const QByteArray& user, const QByteArray& password)
    : expected(hashOf(user + ':' + password))
{
}

QByteArray BasicAuth::digestOf(const QByteArray& header)
{
    const int schemeLength = static_cast<int>(sizeof(scheme)) - 1;
    const bool isBasic = header.left(schemeLength).toLower() == scheme;
    return isBasic ? hashOf(QByteArray::fromBase64(header.mid(schemeLength).trimmed()))
                   : QByteArray();
}

bool BasicAuth::admits(const QByteArray& digest) const
{
    if (!isNeeded()) {
        return true;
    }
    if (digest.size() != expected.size()) {
        return false;
    }
    unsigned int difference = 0;
    for (int i = 0; i < expected.size(); ++i) {
        difference |=
            static_cast<unsigned char>(digest[i]) ^ static_cast<unsigned char>(expected[i]);
    }
    return difference == 0;
}

} // namespace Corvane::Server
