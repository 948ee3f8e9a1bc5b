#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace sela {

/// The address of a local file. A value: free to copy and to read from any thread.
///
/// The path keeps its bytes, whatever they are, since a file name on Linux need not be text. Everything that
/// is shown or recorded (`lastPathComponent`, `absoluteString`) is valid text.
class URL {
public:
    /// A file URL from a path; a relative path is taken from the working directory of this moment.
    static URL fileURL(std::string_view path);

    /// Reads "file:///path" or "file://localhost/path" with percent encoding (RFC 8089). Absent when the text
    /// is no such URL: another scheme or host, a relative path, a broken escape, or a zero byte.
    static std::optional<URL> parse(std::string_view text);

    const std::string& path() const { return path_; }

    /// The text after the last "/", ignoring "/" at the end; "/" for the root. Bytes that are not UTF-8
    /// become U+FFFD.
    std::string lastPathComponent() const;

    /// This URL with "/" and `component` appended. The component is not checked.
    URL appendingPathComponent(std::string_view component) const;

    /// This URL without its last component.
    URL deletingLastPathComponent() const;

    /// "file://" and the path, with everything but unreserved characters and "/" percent encoded.
    std::string absoluteString() const;

    bool operator==(const URL&) const = default;

private:
    explicit URL(std::string path) : path_(std::move(path)) {}

    std::string path_;
};

/// The part of a name after its last "."; empty when there is none, or when the name only starts with a ".".
std::string_view pathExtension(std::string_view name);

} // namespace sela
