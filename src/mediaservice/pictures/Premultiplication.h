#pragma once

#include <cstdint>
#include <span>

namespace sela {

/// Multiplies the colours of pixels (red, green, blue, alpha) by their alpha, and divides them by it.
/// Thread-safe.
void premultiply(std::span<std::uint8_t> pixels);
void unpremultiply(std::span<std::uint8_t> pixels);

} // namespace sela
