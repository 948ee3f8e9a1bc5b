#include "mediaservice/pictures/BMPReader.h"

#include "mediaservice/pictures/AreaScaler.h"
#include "mediaservice/pictures/Premultiplication.h"

#include <array>
#include <bit>
#include <vector>

namespace sela {

namespace {

// The headers BITMAPFILEHEADER and BITMAPINFOHEADER and its longer successors.
constexpr std::int64_t fileHeaderSize = 14;
constexpr std::uint32_t infoHeaderSize = 40;
constexpr std::uint32_t maskedInfoHeaderSize = 56; // from here on the masks are part of the header
constexpr std::uint32_t compressionNone = 0;
constexpr std::uint32_t compressionMasks = 3;

std::uint32_t littleEndian(std::span<const std::byte> bytes) {
    std::uint32_t number = 0;
    for (std::size_t i = bytes.size(); i > 0; --i)
        number = number << 8 | std::to_integer<std::uint32_t>(bytes[i - 1]);
    return number;
}

/// A colour channel's bits in a pixel of 16 or 32 bits.
struct Mask {
    std::uint32_t bits = 0;

    /// The channel's value brought to 0...255.
    std::uint8_t value(std::uint32_t pixel) const {
        const std::uint64_t largest = bits >> std::countr_zero(bits);
        const std::uint64_t channel = (pixel & bits) >> std::countr_zero(bits);
        return static_cast<std::uint8_t>((channel * 255 + largest / 2) / largest);
    }
};

struct Header {
    PictureSize size;
    bool fromTop = false;
    int bitsPerPixel = 0;
    std::int64_t pixels = 0;        ///< where the rows start in the file
    std::array<Mask, 4> masks;      ///< red, green, blue, alpha; of 16 and 32 bits
    std::vector<std::byte> palette; ///< blue, green, red, nothing
    std::size_t rowSize() const {
        return (static_cast<std::size_t>(size.width) * static_cast<std::size_t>(bitsPerPixel) + 31) / 32 * 4;
    }
};

bool readMasks(const InputFile& file, std::uint32_t headerSize, std::uint32_t compression, Header& header) {
    header.masks = header.bitsPerPixel == 16 ? std::array<Mask, 4>{Mask{0x7C00}, {0x3E0}, {0x1F}, {0}}
                                             : std::array<Mask, 4>{Mask{0xFF0000}, {0xFF00}, {0xFF}, {0}};
    if (compression != compressionMasks)
        return true;
    std::array<std::byte, 16> bytes{};
    if (file.readAt(fileHeaderSize + infoHeaderSize, bytes) != bytes.size())
        return false;
    const std::size_t count = headerSize >= maskedInfoHeaderSize ? 4 : 3;
    for (std::size_t i = 0; i < count; ++i)
        header.masks[i].bits = littleEndian(std::span(bytes).subspan(4 * i, 4));
    return header.masks[0].bits != 0 && header.masks[1].bits != 0 && header.masks[2].bits != 0;
}

std::optional<Header> readHeader(const InputFile& file) {
    std::array<std::byte, fileHeaderSize + infoHeaderSize> bytes{};
    if (file.readAt(0, bytes) != bytes.size())
        return std::nullopt;
    const auto number = [&](std::size_t offset, std::size_t size) {
        return littleEndian(std::span(bytes).subspan(offset, size));
    };
    const std::uint32_t headerSize = number(14, 4);
    const auto width = static_cast<std::int32_t>(number(18, 4));
    const auto height = static_cast<std::int32_t>(number(22, 4));
    const std::uint32_t compression = number(30, 4);
    Header header;
    header.bitsPerPixel = static_cast<int>(number(28, 2));
    header.pixels = number(10, 4);
    if (headerSize < infoHeaderSize || height < -largestSourceSide)
        return std::nullopt;
    header.fromTop = height < 0;
    header.size = {width, header.fromTop ? -height : height};
    if (!isDecodableSize(header.size))
        return std::nullopt;
    const bool wide = header.bitsPerPixel == 16 || header.bitsPerPixel == 32;
    if (compression != compressionNone && !(compression == compressionMasks && wide))
        return std::nullopt;

    switch (header.bitsPerPixel) {
    case 1:
    case 4:
    case 8:
        header.palette.resize(std::size_t{4} << header.bitsPerPixel);
        file.readAt(fileHeaderSize + headerSize, header.palette);
        return header;
    case 24:
        return header;
    case 16:
    case 32:
        return readMasks(file, headerSize, compression, header) ? std::optional(header) : std::nullopt;
    default:
        return std::nullopt;
    }
}

/// Unpacks one row of the file into red, green, blue, alpha.
void unpack(const Header& header, std::span<const std::byte> from, std::span<std::uint8_t> to) {
    const auto bits = static_cast<std::size_t>(header.bitsPerPixel);
    for (std::size_t x = 0; 4 * x < to.size(); ++x) {
        std::uint8_t* out = to.data() + 4 * x;
        out[3] = 255;
        if (bits == 16 || bits == 32) {
            const std::uint32_t pixel = littleEndian(from.subspan(x * bits / 8, bits / 8));
            for (std::size_t channel = 0; channel < 4; ++channel)
                if (header.masks[channel].bits != 0)
                    out[channel] = header.masks[channel].value(pixel);
            continue;
        }
        const std::byte* colour = from.data() + 3 * x;
        if (bits <= 8) {
            const std::size_t place = x * bits;
            const auto byte = std::to_integer<std::size_t>(from[place / 8]);
            const std::size_t index = byte >> (8 - bits - place % 8) & ((std::size_t{1} << bits) - 1);
            colour = header.palette.data() + 4 * index;
        }
        for (std::size_t channel = 0; channel < 3; ++channel)
            out[channel] = std::to_integer<std::uint8_t>(colour[2 - channel]);
    }
}

} // namespace

std::optional<DecodedPicture> readBMP(const InputFile& file, int maximumSide) {
    const auto header = readHeader(file);
    if (!header)
        return std::nullopt;
    AreaScaler scaler(header->size, fitted(header->size, maximumSide));
    std::vector<std::byte> packed(header->rowSize());
    std::vector<std::uint8_t> row(std::size_t{4} * static_cast<std::size_t>(header->size.width));
    for (int y = 0; y < header->size.height; ++y) {
        const int stored = header->fromTop ? y : header->size.height - 1 - y;
        const std::int64_t offset = header->pixels + static_cast<std::int64_t>(packed.size()) * stored;
        if (file.readAt(offset, packed) != packed.size())
            return std::nullopt;
        unpack(*header, packed, row);
        if (header->masks[3].bits != 0)
            premultiply(row);
        scaler.addRow(row.data());
    }
    DecodedPicture picture;
    picture.pixels = scaler.take();
    return picture;
}

} // namespace sela
