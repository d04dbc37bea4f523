#pragma once

#include <tests/support/TestAuthority.h>

#include <QString>
#include <QThread>

#include <memory>

class HttpTestServer;
class TlsListener;

/// Offers a server over HTTPS: takes TLS connections on a port of its own and passes on what is
/// inside, both ways. On a thread of its own, so a test may be blocked in a fetch meanwhile.
class TlsFront
{
public:
    /// The server stays the caller's, and must outlive the front.
    TlsFront(const HttpTestServer& server, const TestCertificate& certificate);
    ~TlsFront();
    TlsFront(const TlsFront&) = delete;
    TlsFront& operator=(const TlsFront&) = delete;

    QString url(const QString& target) const;

private:
    QThread thread;
    std::unique_ptr<TlsListener> listener; // lives on the thread
    int port = 0;
};
