#pragma once

#include <string>

namespace sela {

/// Whether the lines of `NSLog` are written to standard error, as they are until this says otherwise. The
/// system's log has them in any case. Thread-safe.
void setLogPrinted(bool printed);

/// Writes a line and its end to standard error, in one piece. Never waits for a reader: a line that a full
/// pipe or a stopped terminal has no room for is dropped. Thread-safe.
void printToStandardError(std::string line);

} // namespace sela
