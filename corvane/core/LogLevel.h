#pragma once

namespace Corvane {

/// Severity of a log line, in rising order. None is the level of a sink that takes nothing.
enum LogLevel : int
{
    Debug = 0,
    Information = 1,
    Warning = 2,
    Error = 3,
    Critical = 4,
    None = 5
};

} // namespace Corvane
