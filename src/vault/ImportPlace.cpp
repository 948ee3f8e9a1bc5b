#include "vault/ImportPlace.h"

#include "platform/foundation/UTF8.h"

namespace sela {

namespace {

constexpr std::size_t longestName = 255;

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
        const bool control =
            character.codePoint < 0x20 || (character.codePoint >= 0x7F && character.codePoint < 0xA0);
        if (control || character.codePoint == '/')
            name += '_';
        else
            appendUTF8(name, character.codePoint);
        text.remove_prefix(character.length);
    }
    if (name.empty() || name.front() == '.')
        name.insert(name.begin(), '_');
    const std::string_view ending = dottedExtension(name);
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
