#include "mediaservice/pictures/PICTReader.h"

#include "mediaservice/pictures/JPEGReader.h"
#include "mediaservice/pictures/PICTFile.h"

#include <algorithm>
#include <vector>

namespace sela {

namespace {

/// Undoes PackBits over units of one or two bytes; false when there are fewer than `unpacked` holds.
bool unpackBits(std::span<const std::byte> packed, std::size_t unit, std::span<std::byte> unpacked) {
    std::size_t place = 0;
    while (place < unpacked.size()) {
        if (packed.empty())
            return false;
        const auto control = std::to_integer<std::size_t>(packed.front());
        packed = packed.subspan(1);
        if (control == 128)
            continue;
        const bool repeats = control > 128;
        const std::size_t size = unit * (repeats ? 257 - control : control + 1);
        const std::size_t stored = repeats ? unit : size;
        if (packed.size() < stored)
            return false;
        for (std::size_t i = 0; i < size && place < unpacked.size(); ++i)
            unpacked[place++] = packed[i % stored];
        packed = packed.subspan(stored);
    }
    return true;
}

/// Reads the rows of a bitmap one after another.
class Rows {
public:
    Rows(const InputFile& file, const PICTBitmap& bitmap)
        : file_(file), bitmap_(bitmap), offset_(bitmap.pixels), unpacked_(unpackedSize()) {}

    /// The next row as red, green, blue; every fourth byte is left as it is. False when the file is
    /// truncated.
    bool next(std::span<std::uint8_t> out) {
        if (!readUnpacked())
            return false;
        const auto width = static_cast<std::size_t>(bitmap_.size.width);
        for (std::size_t x = 0; x < width; ++x) {
            const PICTBitmap::Colour colour = colourAt(x);
            std::ranges::copy(colour, out.begin() + static_cast<std::ptrdiff_t>(4 * x));
        }
        return true;
    }

private:
    std::size_t unpackedSize() const {
        const auto width = static_cast<std::size_t>(bitmap_.size.width);
        switch (bitmap_.packing) {
        case PICTBitmap::Packing::noPadding:
            return 3 * width;
        case PICTBitmap::Packing::words:
            return 2 * width;
        case PICTBitmap::Packing::planes:
            return static_cast<std::size_t>(bitmap_.planes) * width;
        default:
            return bitmap_.rowSize;
        }
    }

    bool readUnpacked() {
        if (bitmap_.packing == PICTBitmap::Packing::none ||
            bitmap_.packing == PICTBitmap::Packing::noPadding) {
            const bool isWhole = file_.readAt(offset_, unpacked_) == unpacked_.size();
            offset_ += static_cast<std::int64_t>(unpacked_.size());
            return isWhole;
        }
        std::array<std::byte, 2> sizeBytes{};
        const auto sizeOfSize = std::size_t{bitmap_.rowSize > 250 ? 2U : 1U};
        if (file_.readAt(offset_, std::span(sizeBytes).first(sizeOfSize)) != sizeOfSize)
            return false;
        std::size_t size = std::to_integer<std::size_t>(sizeBytes[0]);
        if (sizeOfSize == 2)
            size = size << 8 | std::to_integer<std::size_t>(sizeBytes[1]);
        packed_.resize(size);
        offset_ += static_cast<std::int64_t>(sizeOfSize);
        if (file_.readAt(offset_, packed_) != size)
            return false;
        offset_ += static_cast<std::int64_t>(size);
        return unpackBits(packed_, bitmap_.packing == PICTBitmap::Packing::words ? 2 : 1, unpacked_);
    }

    PICTBitmap::Colour colourAt(std::size_t x) const {
        const auto byte = [this](std::size_t place) {
            return std::to_integer<std::uint8_t>(unpacked_[place]);
        };
        const auto width = static_cast<std::size_t>(bitmap_.size.width);
        const auto bits = static_cast<std::size_t>(bitmap_.bitsPerPixel);
        if (bits <= 8) {
            const std::size_t place = x * bits;
            return bitmap_.palette[byte(place / 8) >> (8 - bits - place % 8) & ((1U << bits) - 1)];
        }
        if (bits == 16) {
            const unsigned pixel = unsigned{byte(2 * x)} << 8 | byte(2 * x + 1);
            const auto channel = [pixel](int shift) {
                return static_cast<std::uint8_t>(((pixel >> shift & 31) * 255 + 15) / 31);
            };
            return {channel(10), channel(5), channel(0)};
        }
        switch (bitmap_.packing) {
        case PICTBitmap::Packing::planes: {
            const std::size_t red = x + (bitmap_.planes == 4 ? width : 0);
            return {byte(red), byte(red + width), byte(red + 2 * width)};
        }
        case PICTBitmap::Packing::noPadding:
            return {byte(3 * x), byte(3 * x + 1), byte(3 * x + 2)};
        default:
            return {byte(4 * x + 1), byte(4 * x + 2), byte(4 * x + 3)};
        }
    }

    const InputFile& file_;
    const PICTBitmap& bitmap_;
    std::int64_t offset_;
    std::vector<std::byte> packed_;
    std::vector<std::byte> unpacked_;
};

bool readBitmap(const InputFile& file, const PICTBitmap& bitmap, PictureTarget& target) {
    target.begin(PictureRows::of(bitmap.size));
    std::vector<std::uint8_t> row(std::size_t{4} * static_cast<std::size_t>(bitmap.size.width), 255);
    Rows rows(file, bitmap);
    for (int y = 0; y < bitmap.size.height; ++y) {
        if (!rows.next(row))
            return false;
        target.addRow(row.data());
    }
    return true;
}

} // namespace

bool readPICT(const InputFile& file, PictureTarget& target) {
    const auto picture = PICTFile::read(file);
    if (!picture)
        return false;
    const PictureSize size = picture->image ? picture->image->size : picture->bitmap->size;
    const std::int64_t whole = std::int64_t{picture->frame.width} * picture->frame.height;
    if (std::int64_t{2} * size.width * size.height < whole)
        return false;
    if (picture->image)
        return readJPEG(file, picture->image->start, picture->image->end, target);
    return readBitmap(file, *picture->bitmap, target);
}

} // namespace sela
