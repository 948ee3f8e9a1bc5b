#include "mediaservice/pictures/BMPReader.h"

#include "mediaservice/pictures/BMPHeader.h"
#include "mediaservice/pictures/BMPRuns.h"
#include "mediaservice/pictures/JPEGReader.h"
#include "mediaservice/pictures/Premultiplication.h"

#include <algorithm>
#include <vector>

namespace sela {

namespace {

std::uint32_t littleEndian(const std::byte* bytes, std::size_t size) {
    std::uint32_t number = 0;
    for (std::size_t i = size; i > 0; --i)
        number = number << 8 | std::to_integer<std::uint32_t>(bytes[i - 1]);
    return number;
}

/// Unpacks one row of the file into red, green, blue, alpha.
void unpack(const BMPHeader& header, const std::byte* from, std::span<std::uint8_t> to) {
    const auto bits = static_cast<std::size_t>(header.bitsPerPixel);
    for (std::size_t x = 0; 4 * x < to.size(); ++x) {
        std::uint8_t* out = to.data() + 4 * x;
        out[3] = 255;
        if (bits == 24) {
            for (std::size_t channel = 0; channel < 3; ++channel)
                out[channel] = std::to_integer<std::uint8_t>(from[3 * x + 2 - channel]);
        } else if (bits > 8) {
            const std::uint32_t pixel = littleEndian(from + x * bits / 8, bits / 8);
            for (std::size_t channel = 0; channel < (header.hasAlpha() ? 4 : 3); ++channel)
                out[channel] = header.channels[channel].value(pixel);
        } else {
            const std::size_t place = x * bits;
            const auto byte = std::to_integer<std::size_t>(from[place / 8]);
            const std::size_t index = byte >> (8 - bits - place % 8) & ((std::size_t{1} << bits) - 1);
            std::ranges::copy(header.palette[index], out);
        }
    }
}

bool hasVisiblePixel(std::span<const std::uint8_t> row) {
    for (std::size_t i = 3; i < row.size(); i += 4)
        if (row[i] != 0)
            return true;
    return false;
}

/// Hands the rows over; `isVisible` becomes whether any pixel of them is.
bool readPlainRows(const InputFile& file, const BMPHeader& header, PictureTarget& target, bool& isVisible) {
    const std::size_t bits =
        static_cast<std::size_t>(header.size.width) * static_cast<std::size_t>(header.bitsPerPixel);
    std::vector<std::byte> packed((bits + 31) / 32 * 4);
    const auto rowSize = static_cast<std::int64_t>(packed.size());
    // Some writers do not pad the last row.
    const std::size_t leastRowSize = (bits + 7) / 8;
    if (header.pixels + rowSize * (header.size.height - 1) + static_cast<std::int64_t>(leastRowSize) >
        file.size())
        return false;
    std::vector<std::uint8_t> row(std::size_t{4} * static_cast<std::size_t>(header.size.width));
    for (int y = 0; y < header.size.height; ++y) {
        if (file.readAt(header.pixels + rowSize * y, packed) < leastRowSize)
            return false;
        unpack(header, packed.data(), row);
        isVisible = isVisible || hasVisiblePixel(row);
        if (header.hasAlpha())
            premultiply(row);
        target.addRow(row.data());
    }
    return true;
}

} // namespace

bool readBMP(const InputFile& file, PictureTarget& target) {
    auto header = BMPHeader::read(file);
    if (!header)
        return false;
    if (header->coding == BMPHeader::Coding::embeddedJPEG)
        return readJPEG(file, header->pixels, file.size(), target);
    PictureRows rows = PictureRows::of(header->size);
    rows.orientation = header->fromTop ? Orientation::up : Orientation::downMirrored;
    target.begin(rows);
    if (header->coding == BMPHeader::Coding::runs)
        return readBMPRuns(file, *header, [&](const std::uint8_t* row) { target.addRow(row); });
    bool isVisible = false;
    if (!readPlainRows(file, *header, target, isVisible))
        return false;
    if (isVisible)
        return true;
    // Many writers name the bits of alpha but leave them zero.
    header->channels[3] = BMPChannel();
    target.begin(rows);
    return readPlainRows(file, *header, target, isVisible);
}

} // namespace sela
