#include "platform/foundation/UTF8.h"

namespace sela {

namespace {

struct Lead {
    std::size_t length;
    char32_t bits;
    char32_t smallest; ///< below it the form is overlong
};

Lead leadOf(unsigned char byte) {
    if (byte < 0x80)
        return {1, byte, 0};
    if ((byte & 0xE0) == 0xC0)
        return {2, byte & 0x1Fu, 0x80};
    if ((byte & 0xF0) == 0xE0)
        return {3, byte & 0x0Fu, 0x800};
    if ((byte & 0xF8) == 0xF0)
        return {4, byte & 0x07u, 0x10000};
    return {0, 0, 0};
}

} // namespace

DecodedCharacter decodeUTF8(std::string_view text) {
    const DecodedCharacter damaged{U'\uFFFD', 1, false};
    const Lead lead = leadOf(static_cast<unsigned char>(text.front()));
    if (lead.length == 0 || lead.length > text.size())
        return damaged;
    char32_t codePoint = lead.bits;
    for (std::size_t i = 1; i < lead.length; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if ((byte & 0xC0) != 0x80)
            return damaged;
        codePoint = codePoint << 6 | (byte & 0x3Fu);
    }
    const bool surrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
    if (codePoint < lead.smallest || surrogate || codePoint > 0x10FFFF)
        return damaged;
    return {codePoint, lead.length, true};
}

bool isValidUTF8(std::string_view text) {
    while (!text.empty()) {
        const DecodedCharacter character = decodeUTF8(text);
        if (!character.valid)
            return false;
        text.remove_prefix(character.length);
    }
    return true;
}

std::string repairedUTF8(std::string_view text) {
    std::string repaired;
    repaired.reserve(text.size());
    while (!text.empty()) {
        const DecodedCharacter character = decodeUTF8(text);
        appendUTF8(repaired, character.codePoint);
        text.remove_prefix(character.length);
    }
    return repaired;
}

void appendUTF8(std::string& text, char32_t codePoint) {
    const auto continuation = [](char32_t bits) { return static_cast<char>(0x80 | (bits & 0x3F)); };
    if (codePoint < 0x80) {
        text += static_cast<char>(codePoint);
    } else if (codePoint < 0x800) {
        text += static_cast<char>(0xC0 | codePoint >> 6);
        text += continuation(codePoint);
    } else if (codePoint < 0x10000) {
        text += static_cast<char>(0xE0 | codePoint >> 12);
        text += continuation(codePoint >> 6);
        text += continuation(codePoint);
    } else {
        text += static_cast<char>(0xF0 | codePoint >> 18);
        text += continuation(codePoint >> 12);
        text += continuation(codePoint >> 6);
        text += continuation(codePoint);
    }
}

std::size_t characterCount(std::string_view text) {
    std::size_t count = 0;
    while (!text.empty()) {
        text.remove_prefix(decodeUTF8(text).length);
        ++count;
    }
    return count;
}

std::string lowercasedASCII(std::string_view text) {
    std::string lowered(text);
    for (char& letter : lowered)
        if (letter >= 'A' && letter <= 'Z')
            letter = static_cast<char>(letter - 'A' + 'a');
    return lowered;
}

} // namespace sela
