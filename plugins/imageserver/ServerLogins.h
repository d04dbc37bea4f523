#pragma once

#include <plugins/imageserver/ImageServerAddress.h>

namespace Corvane::Map {

/// The credentials that servers have accepted, as long as the program runs: documents and settings
/// hold none, and whoever opens a second image of a server is not asked again. GUI thread only.
namespace ServerLogins {

/// Those of the user on the server, and of the one who was accepted last where none is named; empty
/// where none are known.
ServerCredentials find(const QString& serverName, const QString& user);
/// Takes the place of what was known of the same user on the same server.
void remember(const QString& serverName, const ServerCredentials& credentials);
void forgetAll();

} // namespace ServerLogins
} // namespace Corvane::Map
