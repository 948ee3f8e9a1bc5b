#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

namespace sela {

/// The colours of a picture with a high dynamic range. Transfer and primaries are numbers of ITU-T H.273
/// (tables 3 and 2), as films and HEIF files give them.
struct HDRColours {
    enum class Transfer { pq = 16, hlg = 18 }; ///< SMPTE ST 2084, ARIB STD-B67

    Transfer transfer = Transfer::pq;
    int primaries = 9;  ///< 9: BT.2020, 12: P3; others count as sRGB's
    double peak = 1000; ///< the brightest intended value, in candela per square metre

    /// Absent for transfers of standard dynamic range.
    static std::optional<HDRColours> of(int transfer, int primaries);
};

/// Converts colours of a high dynamic range to sRGB: light up to that of white paper (203 cd/m2, ITU-R
/// BT.2408) stays nearly unchanged, brighter light is compressed below the screen's white (ITU-R BT.2390). A
/// value that is cheap to copy; thread-safe.
class ToneMapping {
public:
    explicit ToneMapping(const HDRColours& colours);

    /// From pixels of red, green, blue and a fourth value that is kept, 16 bits each, to as many of 8 bits
    /// each.
    void convert(std::span<const std::uint16_t> from, std::span<std::uint8_t> to) const;

    /// The same for pixels of 8 bits a value, in place.
    void convert(std::span<std::uint8_t> pixels) const;

private:
    struct Tables;

    std::shared_ptr<const Tables> tables_;
};

} // namespace sela
