#pragma once

namespace sela {

/// Whether the lines of `NSLog` are written to standard error, as they are until this says otherwise. The
/// system's log has them in any case. Thread-safe.
void setLogPrinted(bool printed);

} // namespace sela
