#include "mediaservice/pictures/DNGReader.h"

#include "mediaservice/pictures/AreaScaler.h"
#include "mediaservice/pictures/EXIF.h"
#include "mediaservice/pictures/JPEGReader.h"
#include "mediaservice/pictures/TIFFDirectory.h"

#include <algorithm>

namespace sela {

namespace {

// Tags and values of TIFF 6.0 and its supplement on JPEG.
constexpr std::uint16_t widthTag = 256;
constexpr std::uint16_t heightTag = 257;
constexpr std::uint16_t bitsTag = 258;
constexpr std::uint16_t compressionTag = 259;
constexpr std::uint16_t photometricTag = 262;
constexpr std::uint16_t stripOffsetsTag = 273;
constexpr std::uint16_t samplesTag = 277;
constexpr std::uint16_t stripSizesTag = 279;
constexpr std::uint16_t planesTag = 284;
constexpr std::uint32_t uncompressed = 1;
constexpr std::uint32_t jpegCompression = 7;
constexpr std::uint32_t photometricRGB = 2;
constexpr std::uint32_t photometricYCbCr = 6;

PictureSize sizeOf(const TIFFDirectory& directory) {
    const auto side = [&](std::uint16_t tag) {
        return static_cast<int>(std::min(directory.number(tag).value_or(0), std::uint32_t{1} << 30));
    };
    return {side(widthTag), side(heightTag)};
}

bool isJPEG(const TIFFDirectory& directory) {
    return directory.number(compressionTag) == jpegCompression &&
           directory.numbers(stripOffsetsTag).size() == 1 && directory.numbers(stripSizesTag).size() == 1;
}

bool isPlainRGB(const TIFFDirectory& directory) {
    return directory.number(compressionTag).value_or(uncompressed) == uncompressed &&
           directory.number(samplesTag) == 3U && directory.number(planesTag).value_or(1) == 1 &&
           std::ranges::all_of(directory.numbers(bitsTag), [](std::uint32_t bits) { return bits == 8; });
}

/// Whether a directory describes a picture that can be shown as it is, not raw sensor data.
bool isPreview(const TIFFDirectory& directory) {
    const std::uint32_t photometric = directory.number(photometricTag).value_or(0);
    if (!isDecodableSize(sizeOf(directory)))
        return false;
    return photometric == photometricRGB ? isJPEG(directory) || isPlainRGB(directory)
                                         : photometric == photometricYCbCr && isJPEG(directory);
}

bool readPlainRGB(const InputFile& file, const TIFFDirectory& directory, Orientation orientation,
                  PictureTarget& target) {
    const PictureSize size = sizeOf(directory);
    const auto offsets = directory.numbers(stripOffsetsTag);
    const auto sizes = directory.numbers(stripSizesTag);
    if (offsets.size() != sizes.size())
        return false;
    target.begin({size, size, orientation, {}});
    int rows = 0;
    std::vector<std::byte> packed(std::size_t{3} * static_cast<std::size_t>(size.width));
    std::vector<std::uint8_t> row(std::size_t{4} * static_cast<std::size_t>(size.width), 255);
    for (std::size_t strip = 0; strip < offsets.size(); ++strip) {
        const std::int64_t end = std::int64_t{offsets[strip]} + sizes[strip];
        const auto rowSize = static_cast<std::int64_t>(packed.size());
        for (std::int64_t offset = offsets[strip]; offset + rowSize <= end; offset += rowSize) {
            if (rows++ == size.height)
                return true;
            if (file.readAt(offset, packed) != packed.size())
                return false;
            for (std::size_t from = 0, to = 0; from < packed.size(); from += 3, to += 4)
                for (std::size_t channel = 0; channel < 3; ++channel)
                    row[to + channel] = std::to_integer<std::uint8_t>(packed[from + channel]);
            target.addRow(row.data());
        }
    }
    return rows == size.height;
}

} // namespace

bool readDNGPreview(const InputFile& file, PictureTarget& target) {
    const auto main = TIFFDirectory::first(
        [&file](std::int64_t offset, std::span<std::byte> buffer) { return file.readAt(offset, buffer); });
    if (!main)
        return false;
    std::vector<TIFFDirectory> previews = main->subdirectories();
    previews.push_back(*main);
    std::erase_if(previews, [](const TIFFDirectory& directory) { return !isPreview(directory); });
    const auto longerSide = [](const TIFFDirectory& directory) {
        return std::max(sizeOf(directory).width, sizeOf(directory).height);
    };
    std::ranges::sort(previews, {}, longerSide);
    if (previews.empty())
        return false;
    const PictureSize wanted = fitted(sizeOf(previews.back()), target.bounds());
    const auto chosen = std::ranges::find_if(previews, [&](const TIFFDirectory& directory) {
        return longerSide(directory) >= std::max(wanted.width, wanted.height);
    });
    const Orientation orientation = orientationOf(*main);
    if (!isJPEG(*chosen))
        return readPlainRGB(file, *chosen, orientation, target);
    const std::int64_t offset = chosen->numbers(stripOffsetsTag).front();
    return readJPEG(file, offset, offset + chosen->numbers(stripSizesTag).front(), target, orientation);
}

} // namespace sela
