#pragma once

#include <functional>
#include <string>

namespace sela {

/// Has every line of `NSLog` handed to `print` in place of being written to standard error; an empty `print`
/// has them written again. The system's log has the lines in any case. `print` gets a line without its end,
/// on whatever thread logs, one call at a time; it must not log. When this returns, the printer that was set
/// before is not running any more. Thread-safe.
void setLogPrinter(std::function<void(const std::string& line)> print);

/// Writes a line and its end to standard error, in one piece.
void printToStandardError(std::string line);

} // namespace sela
