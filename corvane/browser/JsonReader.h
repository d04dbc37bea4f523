#pragma once

#include <corvane/core/Export.h>

#include <QString>
#include <QVariant>

/// Reads JSON text into nested variants. Any thread.
namespace JsonReader {

/// Reads one value from the start of json; what follows it is not looked at. The words true and false
/// give a bool, null an invalid variant. success tells a failure, for which there is no other report;
/// a null string is no failure. Nothing but the three words is recognised: every object, array, string
/// and number fails.
CORVANE_EXPORT QVariant parse(const QString& json, bool& success);
/// The same without a report: look at the other form's success to tell "null" from a failure.
CORVANE_EXPORT QVariant parse(const QString& json);

} // namespace JsonReader
