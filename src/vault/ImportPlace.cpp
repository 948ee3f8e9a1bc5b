#include "vault/ImportPlace.h"

#include "platform/foundation/UTF8.h"

namespace sela {

namespace {

constexpr std::size_t longestName = 255;
constexpr std::size_t longestCharacter = 4;

/// Controls, line separators, and what turns the direction of the text behind it. The marks that names in
/// Arabic and Hebrew are written with stay.
bool misleads(char32_t c) {
    const bool control = c < 0x20 || (c >= 0x7F && c < 0xA0);
    return control || (c >= 0x2028 && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

/// The longest start of `text` of at most `size` bytes that ends between two characters.
std::string_view shortened(std::string_view text, std::size_t size) {
    std::size_t length = 0;
    while (length < text.size()) {
        const std::size_t next = length + decodeUTF8(text.substr(length)).length;
        if (next > size)
            break;
        length = next;
    }
    return text.substr(0, length);
}

/// `stem + ending`, the stem shortened so that both fit into a file name.
std::string fitted(std::string_view stem, std::string_view ending) {
    ending = shortened(ending, longestName);
    return std::string(shortened(stem, longestName - ending.size())) + std::string(ending);
}

/// The extension with its dot; empty when there is none.
std::string_view dottedExtension(std::string_view name) {
    const std::string_view extension = pathExtension(name);
    return extension.empty() ? std::string_view() : name.substr(name.size() - extension.size() - 1);
}

} // namespace

std::string safeFileName(std::string_view text) {
    std::string name;
    while (!text.empty()) {
        const DecodedCharacter character = decodeUTF8(text);
        if (character.codePoint == '/' || misleads(character.codePoint))
            name += '_';
        else
            appendUTF8(name, character.codePoint);
        text.remove_prefix(character.length);
    }
    if (name.empty() || name.front() == '.')
        name.insert(name.begin(), '_');
    std::string_view ending = dottedExtension(name);
    // What would leave no character before it is no extension, and its dot would hide the file.
    if (ending.size() + longestCharacter > longestName)
        ending = {};
    return fitted(std::string_view(name).substr(0, name.size() - ending.size()), ending);
}

URL importFolder(const URL& into, const SharedItem& item) {
    URL folder = into.appendingPathComponent(item.fake ? "decoy" : "vault");
    for (const std::string& name : item.albumNames)
        folder = folder.appendingPathComponent(safeFileName(name));
    return folder;
}

std::string importName(const SharedItem& item, int attempt) {
    const std::string name = safeFileName(item.preferredName.value_or(item.fileName));
    if (attempt < 2)
        return name;
    const std::string_view ending = dottedExtension(name);
    const std::string_view stem = std::string_view(name).substr(0, name.size() - ending.size());
    return fitted(stem, " (" + std::to_string(attempt) + ")" + std::string(ending));
}

} // namespace sela
