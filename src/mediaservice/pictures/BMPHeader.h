#pragma once

#include "mediaservice/InputFile.h"
#include "mediaservice/pictures/AreaScaler.h"

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace sela {

/// The bits of one colour channel in a pixel of 16 or 32 bits.
class BMPChannel {
public:
    explicit BMPChannel(std::uint32_t mask = 0);

    bool exists() const { return mask_ != 0; }

    /// The channel's value in `pixel`, scaled to 0...255; 0 when there is no such channel.
    std::uint8_t value(std::uint32_t pixel) const { return values_[(pixel & mask_) >> shift_]; }

private:
    std::uint32_t mask_;
    int shift_ = 0;
    std::array<std::uint8_t, 256> values_{};
};

/// The description of the pixels at the start of a BMP file, in any of the headers of Windows and of OS/2. A
/// value.
struct BMPHeader {
    enum class Coding {
        plain,        ///< rows of pixels, each row filled up to 32 bits
        runs,         ///< lengths of runs, of pixels of 4, 8 or 24 bits
        embeddedJPEG, ///< a JPEG file
    };
    using Colour = std::array<std::uint8_t, 3>; ///< red, green, blue

    PictureSize size;
    bool fromTop = false; ///< whether the first row stored is the uppermost
    int bitsPerPixel = 0; ///< 1, 2, 4, 8, 16, 24 or 32; 0 for JPEG
    Coding coding = Coding::plain;
    std::int64_t pixels = 0;            ///< where they start in the file
    std::vector<Colour> palette;        ///< an entry for each value that a pixel of up to 8 bits can have
    std::array<BMPChannel, 4> channels; ///< red, green, blue, alpha of pixels of 16 and 32 bits

    bool hasAlpha() const { return channels[3].exists(); }

    /// Reads the headers; absent when they are truncated, inconsistent, or of an unsupported kind.
    static std::optional<BMPHeader> read(const InputFile& file);
};

} // namespace sela
