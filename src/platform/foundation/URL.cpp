#include "platform/foundation/URL.h"

#include "platform/foundation/UTF8.h"

#include <filesystem>
#include <system_error>

namespace sela {

namespace {

constexpr std::string_view fileScheme = "file://";
constexpr std::string_view localHost = "localhost";

/// `path` without "/" at its end, unless it is the root.
std::string_view withoutTrailingSlashes(std::string_view path) {
    while (path.size() > 1 && path.back() == '/')
        path.remove_suffix(1);
    return path;
}

int hexadecimalValue(char digit) {
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    if (digit >= 'a' && digit <= 'f')
        return digit - 'a' + 10;
    if (digit >= 'A' && digit <= 'F')
        return digit - 'A' + 10;
    return -1;
}

std::optional<std::string> percentDecoded(std::string_view text) {
    std::string decoded;
    decoded.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char byte = text[i];
        if (byte == '%') {
            if (i + 2 >= text.size())
                return std::nullopt;
            const int high = hexadecimalValue(text[i + 1]);
            const int low = hexadecimalValue(text[i + 2]);
            if (high < 0 || low < 0)
                return std::nullopt;
            byte = static_cast<char>(high * 16 + low);
            i += 2;
        }
        if (byte == '\0')
            return std::nullopt;
        decoded += byte;
    }
    return decoded;
}

bool isUnreserved(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '.' || c == '_' || c == '~';
}

} // namespace

URL URL::fileURL(std::string_view path) {
    if (!path.empty() && path.front() == '/')
        return URL(std::string(path));
    std::error_code error;
    std::string absolute = std::filesystem::current_path(error).string();
    // A removed working directory has no path; below this one nothing can be created.
    if (error)
        absolute = "/proc/self/cwd";
    if (absolute.back() != '/')
        absolute += '/';
    return URL(absolute.append(path));
}

std::optional<URL> URL::parse(std::string_view text) {
    if (lowercasedASCII(text.substr(0, fileScheme.size())) != fileScheme)
        return std::nullopt;
    text.remove_prefix(fileScheme.size());
    if (text.starts_with(localHost))
        text.remove_prefix(localHost.size());
    if (!text.starts_with('/'))
        return std::nullopt;
    std::optional<std::string> path = percentDecoded(text);
    if (!path)
        return std::nullopt;
    return URL(std::move(*path));
}

std::string URL::lastPathComponent() const {
    const std::string_view path = withoutTrailingSlashes(path_);
    if (path == "/")
        return "/";
    return repairedUTF8(path.substr(path.rfind('/') + 1));
}

URL URL::appendingPathComponent(std::string_view component) const {
    std::string path(withoutTrailingSlashes(path_));
    if (path.back() != '/')
        path += '/';
    return URL(path.append(component));
}

URL URL::deletingLastPathComponent() const {
    const std::string_view path = withoutTrailingSlashes(path_);
    const std::size_t slash = path.rfind('/');
    return URL(std::string(slash == 0 ? "/" : path.substr(0, slash)));
}

std::string URL::absoluteString() const {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text(fileScheme);
    for (const char c : path_) {
        if (isUnreserved(c) || c == '/') {
            text += c;
            continue;
        }
        const auto byte = static_cast<unsigned char>(c);
        text += '%';
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

std::string_view pathExtension(std::string_view name) {
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0)
        return {};
    return name.substr(dot + 1);
}

} // namespace sela
