#pragma once

#include <string>

namespace sela {

/// Sets whether `NSLog` writes its lines to standard error, as it does by default. The system's log gets them
/// in any case. Thread-safe.
void setLogPrinted(bool printed);

/// Writes a line with its end to standard error in one write. Never blocks: a line that does not fit into a
/// full pipe or a stopped terminal is dropped. Thread-safe.
void printToStandardError(std::string line);

} // namespace sela
