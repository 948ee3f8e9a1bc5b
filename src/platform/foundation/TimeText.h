#pragma once

#include <string>

namespace sela {

/// A number as the platform describes one: the shortest decimal digits that read back to the same value,
/// never with an exponent, and ".0" behind a whole number. Finite numbers only. Any thread.
std::string describe(double value);

/// The current time by the system's clock. Any thread.
double secondsSince1970();

/// The current time in seconds since 1970 as such a text, different at each call of a process: when the clock
/// stands still or steps back, the next representable time after the last text's is taken. Thread-safe.
std::string uniqueTimeText();

/// The same for a clock that reads `now`: what `uniqueTimeText` does with the system's.
std::string uniqueTimeText(double now);

} // namespace sela
