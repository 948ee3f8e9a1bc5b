#include "mediaservice/pictures/BMPHeader.h"

#include <algorithm>
#include <bit>

namespace sela {

namespace {

// BITMAPFILEHEADER, and the sizes by which the headers that may follow it are told apart.
constexpr std::uint32_t fileHeaderSize = 14;
constexpr std::uint32_t coreHeaderSize = 12;    // BITMAPCOREHEADER (OS/2 1)
constexpr std::uint32_t smallestOS2Header = 16; // OS22XBITMAPHEADER may end after any field
constexpr std::uint32_t infoHeaderSize = 40;    // BITMAPINFOHEADER
constexpr std::uint32_t alphaHeaderSize = 56;   // from here on the header has a mask for alpha
constexpr std::uint32_t largestOS2Header = 64;
constexpr std::uint32_t largestHeaderSize = 124; // BITMAPV5HEADER

// Values of the field biCompression.
constexpr std::uint32_t plainPixels = 0;
constexpr std::uint32_t runsOf8Bits = 1;
constexpr std::uint32_t runsOf4Bits = 2;
constexpr std::uint32_t masks = 3;
constexpr std::uint32_t jpegOrRunsOf24Bits = 4; // the latter in OS/2
constexpr std::uint32_t masksWithAlpha = 6;

/// The headers as stored in the file, followed by zeros.
class Fields {
public:
    explicit Fields(const InputFile& file) {
        std::array<std::byte, fileHeaderSize + 4> start{};
        isWhole_ = file.readAt(0, start) == start.size();
        std::ranges::copy(start, bytes_.begin());
        const std::uint32_t size = headerSize();
        // Three or four masks may follow the header.
        const std::size_t known = fileHeaderSize + (size == infoHeaderSize ? size + 16 : size);
        if (size > largestHeaderSize)
            isWhole_ = false;
        else
            isWhole_ = isWhole_ && file.readAt(0, std::span(bytes_).first(known)) >= fileHeaderSize + size;
    }

    bool isWhole() const { return isWhole_; }
    std::uint32_t headerSize() const { return number(fileHeaderSize, 4); }
    bool isCore() const { return headerSize() == coreHeaderSize; }
    bool isOS2() const {
        return headerSize() == largestOS2Header ||
               (headerSize() >= smallestOS2Header && headerSize() < infoHeaderSize);
    }

    std::uint32_t number(std::size_t offset, std::size_t size) const {
        std::uint32_t number = 0;
        for (std::size_t i = size; i > 0; --i)
            number = number << 8 | std::to_integer<std::uint32_t>(bytes_[offset + i - 1]);
        return number;
    }

private:
    std::array<std::byte, fileHeaderSize + largestHeaderSize> bytes_{};
    bool isWhole_ = false;
};

/// How the pixels are encoded; absent when that is unknown or does not fit their number of bits.
std::optional<BMPHeader::Coding> codingOf(const Fields& fields, std::uint32_t compression, int bits) {
    using Coding = BMPHeader::Coding;
    const bool hasMasks = bits == 16 || bits == 32;
    switch (compression) {
    case plainPixels:
        return Coding::plain;
    case runsOf8Bits:
        return bits == 8 ? std::optional(Coding::runs) : std::nullopt;
    case runsOf4Bits:
        return bits == 4 ? std::optional(Coding::runs) : std::nullopt;
    case masks:
    case masksWithAlpha:
        return hasMasks && !fields.isOS2() ? std::optional(Coding::plain) : std::nullopt;
    case jpegOrRunsOf24Bits:
        if (!fields.isOS2())
            return Coding::embeddedJPEG;
        return bits == 24 ? std::optional(Coding::runs) : std::nullopt;
    default:
        return std::nullopt;
    }
}

/// The channels of pixels of 16 and 32 bits; false when none has any bits.
bool readChannels(const Fields& fields, std::uint32_t compression, BMPHeader& header) {
    if (compression == plainPixels) {
        header.channels =
            header.bitsPerPixel == 16
                ? std::array{BMPChannel(0x7C00), BMPChannel(0x3E0), BMPChannel(0x1F), BMPChannel()}
                : std::array{BMPChannel(0xFF0000), BMPChannel(0xFF00), BMPChannel(0xFF), BMPChannel()};
        return true;
    }
    const bool withAlpha = compression == masksWithAlpha || fields.headerSize() >= alphaHeaderSize;
    for (std::size_t i = 0; i < (withAlpha ? 4 : 3); ++i)
        header.channels[i] = BMPChannel(fields.number(fileHeaderSize + infoHeaderSize + 4 * i, 4));
    return std::ranges::any_of(std::span(header.channels).first(3), &BMPChannel::exists);
}

void readPalette(const InputFile& file, std::int64_t place, std::size_t count, std::size_t entrySize,
                 BMPHeader& header) {
    header.palette.resize(std::size_t{1} << header.bitsPerPixel);
    std::vector<std::byte> entries(std::min(count, header.palette.size()) * entrySize);
    file.readAt(place, entries);
    for (std::size_t i = 0; i * entrySize < entries.size(); ++i)
        for (std::size_t channel = 0; channel < 3; ++channel)
            header.palette[i][channel] = std::to_integer<std::uint8_t>(entries[i * entrySize + 2 - channel]);
}

} // namespace

BMPChannel::BMPChannel(std::uint32_t mask) : mask_(mask) {
    if (mask == 0)
        return;
    // Of more than 8 bits the upper ones count.
    const int width = std::bit_width(mask) - std::countr_zero(mask);
    shift_ = std::countr_zero(mask) + std::max(0, width - 8);
    const std::uint32_t largest = mask >> shift_;
    for (std::uint32_t value = 0; value <= largest; ++value)
        values_[value] = static_cast<std::uint8_t>((value * 255 + largest / 2) / largest);
}

std::optional<BMPHeader> BMPHeader::read(const InputFile& file) {
    const Fields fields(file);
    const std::uint32_t size = fields.headerSize();
    if (!fields.isWhole() || (size < smallestOS2Header && !fields.isCore()))
        return std::nullopt;
    BMPHeader header;
    std::int32_t height = 0;
    std::uint32_t compression = plainPixels;
    std::uint32_t colours = 0;
    if (fields.isCore()) {
        header.size.width = static_cast<std::uint16_t>(fields.number(18, 2));
        height = static_cast<std::int16_t>(fields.number(20, 2));
        header.bitsPerPixel = static_cast<int>(fields.number(24, 2));
    } else {
        header.size.width = static_cast<std::int32_t>(fields.number(18, 4));
        height = static_cast<std::int32_t>(fields.number(22, 4));
        header.bitsPerPixel = static_cast<int>(fields.number(28, 2));
        compression = fields.number(30, 4);
        colours = fields.number(46, 4);
    }
    header.fromTop = height < 0;
    header.size.height = std::max(height, -largestSourceSide - 1);
    if (header.fromTop)
        header.size.height = -header.size.height;
    if (!isDecodableSize(header.size))
        return std::nullopt;
    const auto coding = codingOf(fields, compression, header.bitsPerPixel);
    if (!coding)
        return std::nullopt;
    header.coding = *coding;

    header.pixels = fields.number(10, 4);
    const bool hasPalette = header.bitsPerPixel <= 8 && header.coding != Coding::embeddedJPEG;
    const std::int64_t paletteStart = std::int64_t{fileHeaderSize} + size;
    const std::size_t entrySize = fields.isCore() ? 3 : 4;
    std::size_t count = hasPalette ? std::size_t{1} << header.bitsPerPixel : 0;
    if (hasPalette && colours != 0)
        count = std::min<std::size_t>(count, colours);
    if (hasPalette && header.pixels > paletteStart)
        count = std::min(count, static_cast<std::size_t>(header.pixels - paletteStart) / entrySize);
    // Some writers leave out where the pixels are.
    if (header.pixels < paletteStart)
        header.pixels = paletteStart + static_cast<std::int64_t>(count * entrySize);

    switch (header.bitsPerPixel) {
    case 1:
    case 2:
    case 4:
    case 8:
        readPalette(file, paletteStart, count, entrySize, header);
        return header;
    case 16:
    case 32:
        return readChannels(fields, compression, header) ? std::optional(header) : std::nullopt;
    case 0:
        return header.coding == Coding::embeddedJPEG ? std::optional(header) : std::nullopt;
    case 24:
        return header;
    default:
        return std::nullopt;
    }
}

} // namespace sela
