#include "platform/extension/TypeIdentifier.h"

#include "platform/foundation/URL.h"
#include "platform/foundation/UTF8.h"

#include <algorithm>
#include <array>
#include <magic.h>
#include <memory>
#include <string_view>

namespace sela {

namespace {

struct Type {
    std::string_view identifier;
    std::array<std::string_view, 3> extensions;
};

/// The identifiers that the platform itself declares for the kinds of file that the vault keeps, and for
/// some like them.
constexpr auto types = std::to_array<Type>({
    {"public.jpeg", {"jpg", "jpeg", "jpe"}},
    {"public.heic", {"heic"}},
    {"public.heif", {"heif"}},
    {"public.png", {"png"}},
    {"com.compuserve.gif", {"gif"}},
    {"com.microsoft.bmp", {"bmp"}},
    {"org.webmproject.webp", {"webp"}},
    {"com.adobe.raw-image", {"dng"}},
    {"public.camera-raw-image", {"raw-image"}},
    {"com.apple.pict", {"pict", "pic", "pct"}},
    {"public.tiff", {"tif", "tiff"}},
    {"public.mpeg-4", {"mp4"}},
    {"com.apple.m4v-video", {"m4v"}},
    {"com.apple.quicktime-movie", {"mov", "qt"}},
    {"public.mpeg", {"mpeg", "mpg"}},
    {"org.webmproject.webm", {"webm"}},
    {"public.mp3", {"mp3"}},
    {"com.apple.m4a-audio", {"m4a"}},
    {"public.aac-audio", {"aac"}},
    {"public.aiff-audio", {"aiff", "aif"}},
    {"public.au-audio", {"au", "snd"}},
    {"org.xiph.flac", {"flac"}},
    {"com.microsoft.waveform-audio", {"wav"}},
});

/// Only its table of patterns: the formats that libmagic would parse itself (archives, documents, programs)
/// are none of the kinds here.
constexpr int magicFlags = MAGIC_MIME_TYPE | MAGIC_NO_CHECK_COMPRESS | MAGIC_NO_CHECK_TAR |
                           MAGIC_NO_CHECK_APPTYPE | MAGIC_NO_CHECK_ELF | MAGIC_NO_CHECK_TOKENS |
                           MAGIC_NO_CHECK_CDF | MAGIC_NO_CHECK_CSV | MAGIC_NO_CHECK_JSON;

} // namespace

std::string_view typeIdentifierOfName(std::string_view name) {
    const std::string extension = lowercasedASCII(pathExtension(name));
    for (const Type& type : types)
        if (!extension.empty() && std::ranges::find(type.extensions, extension) != type.extensions.end())
            return type.identifier;
    return "public.data";
}

/// The bytes are passed to libmagic in memory, so a hostile file reaches only its matching rules; the
/// decoders run in the sandboxed helper.
std::string mediaTypeOfContent(DataView start) {
    const std::unique_ptr<magic_set, void (*)(magic_t)> magic(::magic_open(magicFlags), &::magic_close);
    if (!magic || ::magic_load(magic.get(), nullptr) != 0)
        return {};
    const char* const found = ::magic_buffer(magic.get(), start.data(), start.size());
    const std::string type = found ? found : "";
    return type == "application/octet-stream" ? "" : type;
}

} // namespace sela
