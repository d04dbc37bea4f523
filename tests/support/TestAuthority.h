#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

/// A certificate with its key, in files.
struct TestCertificate
{
    QString certificate;
    QString key;
};

/// A certificate authority of the test's own, made by the openssl program. Whoever is to trust it
/// is given its file.
class TestAuthority
{
public:
    TestAuthority();

    /// Names itself only; in PEM.
    QString file() const { return self.certificate; }
    /// For a server at alternativeName, "IP:127.0.0.1" or "DNS:name", valid for so many days from
    /// now on: a negative number for one that has expired.
    TestCertificate certify(const QByteArray& alternativeName, int days = 2);

private:
    QTemporaryDir folder;
    TestCertificate self;
    int count = 0;
};
