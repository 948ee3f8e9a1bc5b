#include "platform/extension/TypeIdentifier.h"

#include "platform/foundation/FileManager.h"
#include "platform/foundation/UTF8.h"

#include <algorithm>
#include <array>
#include <magic.h>
#include <memory>
#include <string_view>

namespace sela {

namespace {

constexpr std::string_view anyData = "public.data";

struct Type {
    std::string_view identifier;
    std::string_view mimeType;
    std::array<std::string_view, 3> extensions;
};

/// The identifiers that the platform itself declares for the kinds of file that the vault keeps, and for
/// those that are often shared beside them.
constexpr auto types = std::to_array<Type>({
    {"public.jpeg", "image/jpeg", {"jpg", "jpeg", "jpe"}},
    {"public.heic", "image/heic", {"heic"}},
    {"public.heif", "image/heif", {"heif"}},
    {"public.png", "image/png", {"png"}},
    {"com.compuserve.gif", "image/gif", {"gif"}},
    {"com.microsoft.bmp", "image/bmp", {"bmp"}},
    {"org.webmproject.webp", "image/webp", {"webp"}},
    {"com.adobe.raw-image", "image/x-adobe-dng", {"dng"}},
    {"public.camera-raw-image", "", {"raw-image"}},
    {"com.apple.pict", "image/x-pict", {"pict", "pic", "pct"}},
    {"public.tiff", "image/tiff", {"tif", "tiff"}},
    {"public.mpeg-4", "video/mp4", {"mp4"}},
    {"com.apple.m4v-video", "video/x-m4v", {"m4v"}},
    {"com.apple.quicktime-movie", "video/quicktime", {"mov", "qt"}},
    {"public.mpeg", "video/mpeg", {"mpeg", "mpg"}},
    {"org.webmproject.webm", "video/webm", {"webm"}},
    {"public.mp3", "audio/mpeg", {"mp3"}},
    {"com.apple.m4a-audio", "audio/x-m4a", {"m4a"}},
    {"public.aac-audio", "audio/x-hx-aac-adts", {"aac"}},
    {"public.aiff-audio", "audio/x-aiff", {"aiff", "aif"}},
    {"public.au-audio", "audio/basic", {"au", "snd"}},
    {"org.xiph.flac", "audio/flac", {"flac"}},
    {"com.microsoft.waveform-audio", "audio/x-wav", {"wav"}},
    {"com.adobe.pdf", "application/pdf", {"pdf"}},
    {"public.zip-archive", "application/zip", {"zip"}},
    {"public.plain-text", "text/plain", {"txt", "text"}},
});

/// Its table of patterns alone: what libmagic would take apart itself (archives, documents, programs) is none
/// of the kinds here.
constexpr int magicFlags = MAGIC_MIME_TYPE | MAGIC_NO_CHECK_COMPRESS | MAGIC_NO_CHECK_TAR |
                           MAGIC_NO_CHECK_APPTYPE | MAGIC_NO_CHECK_ELF | MAGIC_NO_CHECK_TOKENS |
                           MAGIC_NO_CHECK_CDF | MAGIC_NO_CHECK_CSV | MAGIC_NO_CHECK_JSON;

std::string_view identifierOfExtension(std::string_view extension) {
    for (const Type& type : types)
        if (!extension.empty() && std::ranges::find(type.extensions, extension) != type.extensions.end())
            return type.identifier;
    return {};
}

std::string_view identifierOfContent(const URL& file) {
    Result<InputStream> stream = FileManager::defaultManager().inputStream(file);
    if (!stream)
        return {};
    std::array<std::byte, 4096> start;
    const std::int64_t count = stream.value().read(start);
    if (count <= 0)
        return {};
    const std::string mediaType = mediaTypeOfContent(DataView(start).first(static_cast<std::size_t>(count)));
    for (const Type& type : types)
        if (!mediaType.empty() && type.mimeType == mediaType)
            return type.identifier;
    return {};
}

} // namespace

std::string typeIdentifierOfFile(const URL& file) {
    const std::string name = file.lastPathComponent();
    std::string_view identifier = identifierOfExtension(lowercasedASCII(pathExtension(name)));
    if (identifier.empty())
        identifier = identifierOfContent(file);
    return std::string(identifier.empty() ? anyData : identifier);
}

/// The bytes are handed to libmagic in memory, so a hostile file meets only its matching rules; decoders of
/// the kinds found run in the sandboxed helper.
std::string mediaTypeOfContent(DataView start) {
    const std::unique_ptr<magic_set, void (*)(magic_t)> magic(::magic_open(magicFlags), &::magic_close);
    if (!magic || ::magic_load(magic.get(), nullptr) != 0)
        return {};
    const char* const found = ::magic_buffer(magic.get(), start.data(), start.size());
    const std::string type = found ? found : "";
    return type == "application/octet-stream" ? "" : type;
}

} // namespace sela
