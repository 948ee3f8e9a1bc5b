#pragma once

#include <string>
#include <string_view>

namespace sela {

/// Sets whether `NSLog` writes its lines to standard error, as it does by default. The system's log gets them
/// in any case. Thread-safe.
void setLogPrinted(bool printed);

/// Writes a text to standard error, in one write where it fits. What does not fit into a full pipe or a
/// stopped terminal is dropped: a call waits a moment for room, and then none does until there is some again.
/// Thread-safe.
void writeToStandardError(std::string_view text);

/// The same for a line, with its end.
void printToStandardError(const std::string& line);

} // namespace sela
