#pragma once

namespace sela {

/// Seconds of the system's monotonic clock, from an arbitrary start. Thread-safe.
double monotonicSeconds();

} // namespace sela
