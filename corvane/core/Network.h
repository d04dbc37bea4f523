#pragma once

#include <corvane/core/Export.h>

class QBuffer;
class QImage;
class QString;

/// Fetches a URL (http, https or ftp) into memory and returns when it is done: for pool threads,
/// which have no event loop. Redirects are followed, the environment's proxy settings hold, there
/// are no cookies and no time-outs but curl's own, and each thread keeps its connections for its
/// next call. The HTTP status is not looked at: an error page comes back as if it were the data.
/// Any thread.
namespace Corvane::Network {

/// Makes the transport ready; getBuffer does so at its first call. True where it is, and true also
/// after finish.
CORVANE_EXPORT bool initialize();

/// Ends the transport for good: every fetch that begins from here on fails. Nothing to end before
/// initialize.
CORVANE_EXPORT void finish();

/// The bytes of the URL in a closed buffer, which the caller owns; empty where a fetch brought
/// nothing, with curl's reason as a debug line if it failed. What came before a transfer broke is
/// kept. allowCache false asks caches on the way for a fresh copy. A URL of 1024 UTF-16 units or
/// more ends the process.
CORVANE_EXPORT QBuffer* getBuffer(const QString& url, bool allowCache);

/// The bytes decoded, in an image that the caller owns; null where they could not be. Caches on the
/// way are bypassed, whatever allowCache says.
CORVANE_EXPORT QImage* getImage(const QString& url, bool allowCache);

} // namespace Corvane::Network
