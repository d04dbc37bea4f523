#include <corvane/core/CertificateFile.h>

#include <QtGlobal>

namespace Corvane {

// In the order in which GDAL looks, whose layers lie in the same maps.
QByteArray certificateFile()
{
    const QByteArray forCurl = qgetenv("CURL_CA_BUNDLE");
    return forCurl.isEmpty() ? qgetenv("SSL_CERT_FILE") : forCurl;
}

} // namespace Corvane
