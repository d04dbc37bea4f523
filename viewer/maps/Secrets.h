#pragma once

class QString;

namespace Corvane::Viewer {

/// The text, a source or anything that may name one, without what gives access: user names and
/// passwords in addresses, behind image servers' addresses and in connection texts, and keys and
/// tokens in queries. Any thread.
QString withoutSecrets(const QString& text);

} // namespace Corvane::Viewer
