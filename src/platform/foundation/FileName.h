#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace sela {

/// Names of files as text: pure functions; any thread.

/// The most bytes of a name on common file systems.
inline constexpr std::size_t longestFileName = 255;

/// A name split into the part before its extension, and the extension with its dot, empty when there is none.
std::pair<std::string_view, std::string_view> stemAndExtension(std::string_view name);

/// `stem + ending`, the stem shortened at the end of a character so that both are `longest` bytes at most. An
/// ending that is longer by itself is shortened too.
std::string fittedFileName(std::string_view stem, std::string_view ending,
                           std::size_t longest = longestFileName);

} // namespace sela
