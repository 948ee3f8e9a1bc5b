#include "store/FileKind.h"

#include "platform/foundation/URL.h"
#include "platform/foundation/UTF8.h"

#include <algorithm>
#include <array>

namespace sela {

namespace {

constexpr auto imageExtensions = std::to_array<std::string_view>(
    {"jpg", "jpeg", "heic", "heif", "png", "gif", "bmp", "webp", "dng", "raw-image", "pic", "pict"});
constexpr auto videoExtensions = std::to_array<std::string_view>({"mp4", "m4v", "mov", "mpeg"});
constexpr auto audioExtensions =
    std::to_array<std::string_view>({"mp3", "m4a", "aac", "aiff", "au", "flac", "wav"});

} // namespace

FileKind fileKind(std::string_view fileName) {
    const std::string extension = lowercasedASCII(pathExtension(fileName));
    const auto isAmong = [&](const auto& extensions) {
        return std::ranges::find(extensions, extension) != extensions.end();
    };
    if (isAmong(imageExtensions))
        return FileKind::image;
    if (isAmong(videoExtensions))
        return FileKind::video;
    if (isAmong(audioExtensions))
        return FileKind::audio;
    return FileKind::other;
}

std::vector<std::string_view> keptExtensions() {
    std::vector<std::string_view> all(imageExtensions.begin(), imageExtensions.end());
    all.insert(all.end(), videoExtensions.begin(), videoExtensions.end());
    all.insert(all.end(), audioExtensions.begin(), audioExtensions.end());
    return all;
}

} // namespace sela
