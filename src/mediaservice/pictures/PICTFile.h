#pragma once

#include "mediaservice/InputFile.h"
#include "mediaservice/pictures/AreaScaler.h"

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace sela {

/// Pixels inside a PICT file, as a QuickDraw operation describes them. A value.
struct PICTBitmap {
    enum class Packing { none, noPadding, bytes, words, planes };
    using Colour = std::array<std::uint8_t, 3>; ///< red, green, blue

    PictureSize size;
    std::size_t rowSize = 0; ///< of an unpacked row, in bytes
    int bitsPerPixel = 1;    ///< 1, 2, 4, 8, 16 or 32
    int planes = 3;          ///< of 32 bits: 3, or 4 of which the first is unused
    Packing packing = Packing::bytes;
    std::vector<Colour> palette; ///< an entry for each value that a pixel of up to 8 bits can have
    std::int64_t pixels = 0;     ///< where they start in the file
};

/// A JPEG file inside a PICT file.
struct PICTCompressedImage {
    PictureSize size;
    std::int64_t start = 0;
    std::int64_t end = 0;
};

/// The largest picture of pixels among the operations of a PICT file (Inside Macintosh: Imaging With
/// QuickDraw, appendix A). A value.
struct PICTFile {
    PictureSize frame; ///< of the whole
    std::optional<PICTBitmap> bitmap;
    std::optional<PICTCompressedImage> image; ///< when it is larger than any bitmap, which is absent then

    /// Absent when the file does not start as one, or none of its operations draws pixels. Operations after a
    /// broken one are not read.
    static std::optional<PICTFile> read(const InputFile& file);

    /// Whether the file starts as a PICT file.
    static bool isOne(const InputFile& file);
};

} // namespace sela
