#pragma once

#include <corvane/core/Export.h>

#include <QByteArray>

namespace Corvane {

/// The file with the certificate authorities that HTTPS servers are checked against, where the
/// user's surroundings name one for curl or OpenSSL; null for the system's own. All that goes
/// through curl asks here, so one program trusts the same servers everywhere. Any thread.
CORVANE_EXPORT QByteArray certificateFile();

} // namespace Corvane
