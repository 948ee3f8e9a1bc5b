#pragma once

#include <cstdint>
#include <span>

namespace sela {

/// Turns pixels of cyan, magenta, yellow and black (255 is full ink) into opaque red, green, blue as a press
/// on coated paper would print them: for pictures that bring no profile of their press. Thread-safe.
void convertPressInks(std::span<std::uint8_t> pixels);

} // namespace sela
