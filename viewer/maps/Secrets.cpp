#include <viewer/maps/Secrets.h>

#include <viewer/maps/LayerOpener.h>

#include <QRegularExpression>
#include <QString>

namespace Corvane::Viewer {

// Any thread.
QString withoutSecrets(const QString& text)
{
    static const QRegularExpression userInAddress("([a-zA-Z][a-zA-Z0-9+.-]*://)[^/@\\s?#]*@");
    static const QRegularExpression keyInQuery(
        "([?&;][\\w.-]*(?:token|key|password|passwd|pwd|secret|signature|sig)=)[^&#\\s]*",
        QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression passwordInConnection(
        "\\b(password|passwd|pwd)\\s*=\\s*('(?:[^'\\\\]|\\\\.)*'|[^\\s,;&]+)",
        QRegularExpression::CaseInsensitiveOption);
    QString rest = LayerOpener::withoutCredentials(text);
    rest.replace(userInAddress, "\\1");
    const bool isPath = rest.startsWith('/') && !rest.contains("://");
    if (!isPath) {
        rest.replace(keyInQuery, "\\1");
    }
    rest.replace(passwordInConnection, "\\1=");
    return rest;
}

} // namespace Corvane::Viewer
