#include "mediaservice/pictures/EXIF.h"

#include "mediaservice/pictures/TIFFDirectory.h"

#include <algorithm>

namespace sela {

namespace {

constexpr std::uint16_t orientationTag = 274;
constexpr std::string_view prefix("Exif\0\0", 6);

} // namespace

Orientation orientationOf(const TIFFDirectory& directory) {
    return orientationOfNumber(directory.number(orientationTag).value_or(1));
}

Orientation orientationOfEXIF(DataView block) {
    if (asText(block).starts_with(prefix))
        block = block.subspan(prefix.size());
    const auto directory =
        TIFFDirectory::first([block](std::int64_t offset, std::span<std::byte> buffer) -> std::size_t {
            const auto start = static_cast<std::uint64_t>(offset);
            if (start >= block.size())
                return 0;
            const DataView rest = block.subspan(start).first(std::min(block.size() - start, buffer.size()));
            std::ranges::copy(rest, buffer.begin());
            return rest.size();
        });
    return directory ? orientationOf(*directory) : orientationOfNumber(1);
}

} // namespace sela
