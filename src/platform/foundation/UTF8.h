#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace sela {

/// One character read from a text.
struct DecodedCharacter {
    char32_t codePoint; ///< U+FFFD when the bytes are not UTF-8
    std::size_t length; ///< bytes consumed, at least 1
    bool valid;         ///< false when the bytes are not UTF-8
};

/// The character at the start of `text`, which must not be empty. Overlong forms, surrogates and values above
/// U+10FFFF are not UTF-8 (RFC 3629); of an invalid sequence one byte is consumed.
DecodedCharacter decodeUTF8(std::string_view text);

/// Whether `text` is UTF-8 throughout.
bool isValidUTF8(std::string_view text);

/// `text` with each byte that is not part of UTF-8 replaced by U+FFFD.
std::string repairedUTF8(std::string_view text);

/// Appends `codePoint` (a valid one) to `text` as UTF-8.
void appendUTF8(std::string& text, char32_t codePoint);

/// The number of characters (code points) of a text.
std::size_t characterCount(std::string_view text);

/// `text` with the letters A to Z in lower case and everything else kept: the lower case of extensions and
/// type identifiers, independent of the locale.
std::string lowercasedASCII(std::string_view text);

} // namespace sela
