#include <tests/support/TestAuthority.h>

#include <QProcess>
#include <QStringList>

namespace {

const QStringList newKey = {"-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes"};

void openssl(const QStringList& arguments)
{
    QProcess process;
    process.start("openssl", arguments);
    if (!process.waitForFinished() || process.exitCode() != 0) {
        qFatal("openssl %s: %s", qPrintable(arguments.join(' ')),
               process.readAllStandardError().constData());
    }
}

} // namespace

TestAuthority::TestAuthority()
    : self{folder.filePath("authority.pem"), folder.filePath("authority.key")}
{
    openssl(QStringList{"req", "-x509"} + newKey +
            QStringList{"-keyout", self.key, "-out", self.certificate, "-days", "2", "-subj",
                        "/CN=Authority of a test"});
}

TestCertificate TestAuthority::certify(const QByteArray& alternativeName, int days)
{
    const QString name = folder.filePath("server%1").arg(++count);
    const TestCertificate made{name + ".pem", name + ".key"};
    const QString request = name + ".csr";
    openssl(QStringList{"req"} + newKey +
            QStringList{"-keyout", made.key, "-out", request, "-subj", "/CN=Server of a test",
                        "-addext", "subjectAltName=" + alternativeName});
    openssl({"x509", "-req", "-in", request, "-CA", self.certificate, "-CAkey", self.key, "-days",
             QString::number(days), "-copy_extensions", "copy", "-out", made.certificate});
    return made;
}
