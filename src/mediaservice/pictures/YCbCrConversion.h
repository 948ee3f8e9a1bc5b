#pragma once

#include <cstdint>
#include <span>

namespace sela {

/// Turns pixels of luma, blue and red difference, and a fourth byte that is kept, into red, green, blue and
/// that byte. `matrix` is a number of ITU-T H.273 table 4 (1: BT.709, 9: BT.2020, others count as BT.601);
/// `fullRange` selects 0...255 rather than 16...235. Thread-safe.
void convertYCbCr(std::span<std::uint8_t> pixels, int matrix, bool fullRange);

} // namespace sela
