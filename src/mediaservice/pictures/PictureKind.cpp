#include "mediaservice/pictures/PictureKind.h"

#include "mediaservice/pictures/PICTFile.h"

#include <array>

namespace sela {

namespace {

using namespace std::string_view_literals;

/// Whether an ISO media file holds still pictures: the brands of HEIF (ISO 23008-12) and its codecs.
bool isHEIF(std::string_view start) {
    if (start.substr(4, 4) != "ftyp"sv)
        return false;
    constexpr std::array brands{"heic"sv, "heix"sv, "heim"sv, "heis"sv,
                                "mif1"sv, "mif2"sv, "msf1"sv, "avif"sv};
    // The major brand, the version, then compatible brands.
    for (std::size_t place = 8; place + 4 <= start.size(); place += 4)
        for (const std::string_view brand : brands)
            if (start.substr(place, 4) == brand)
                return true;
    return false;
}

} // namespace

PictureKind pictureKind(const InputFile& file) {
    std::array<std::byte, 32> bytes{};
    const std::size_t count = file.readAt(0, bytes);
    const std::string_view start = asText(std::span(bytes).first(count));
    if (start.starts_with("\xFF\xD8\xFF"sv))
        return PictureKind::jpeg;
    if (start.starts_with("\x89PNG\r\n\x1A\n"sv))
        return PictureKind::png;
    if (start.starts_with("GIF87a"sv) || start.starts_with("GIF89a"sv))
        return PictureKind::gif;
    if (start.starts_with("RIFF"sv) && start.size() >= 12 && start.substr(8, 4) == "WEBP"sv)
        return PictureKind::webp;
    if (start.starts_with("II*\0"sv) || start.starts_with("MM\0*"sv))
        return PictureKind::tiff;
    if (start.size() >= 12 && isHEIF(start))
        return PictureKind::heif;
    if (start.starts_with("BM"sv))
        return PictureKind::bmp;
    return PICTFile::isOne(file) ? PictureKind::pict : PictureKind::none;
}

} // namespace sela
