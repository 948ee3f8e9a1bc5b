#include "vault/ImportPlace.h"

#include "platform/foundation/UTF8.h"

namespace sela {

namespace {

constexpr std::size_t longestName = 255;
/// What eCryptfs leaves of that is 143.
constexpr std::size_t longestPortableName = 140;
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

std::size_t longestNameOf(NameForm form) {
    return form == NameForm::own ? longestName : longestPortableName;
}

/// `stem + ending`, the stem shortened so that both fit into a file name.
std::string fitted(std::string_view stem, std::string_view ending, NameForm form) {
    ending = shortened(ending, longestNameOf(form));
    return std::string(shortened(stem, longestNameOf(form) - ending.size())) + std::string(ending);
}

bool isForbidden(char32_t character, NameForm form) {
    constexpr std::u32string_view foreign = U":\"<>|?*\\";
    return character == '/' || misleads(character) ||
           (form == NameForm::portable && foreign.find(character) != std::u32string_view::npos);
}

/// The extension with its dot; empty when there is none.
std::string_view dottedExtension(std::string_view name) {
    const std::string_view extension = pathExtension(name);
    return extension.empty() ? std::string_view() : name.substr(name.size() - extension.size() - 1);
}

} // namespace

std::string safeFileName(std::string_view text, NameForm form) {
    std::string name;
    while (!text.empty()) {
        const DecodedCharacter character = decodeUTF8(text);
        if (isForbidden(character.codePoint, form))
            name += '_';
        else
            appendUTF8(name, character.codePoint);
        text.remove_prefix(character.length);
    }
    if (name.empty() || name.front() == '.')
        name.insert(name.begin(), '_');
    if (form == NameForm::portable && (name.back() == '.' || name.back() == ' '))
        name += '_';
    std::string_view ending = dottedExtension(name);
    // What would leave no character before it is no extension, and its dot would hide the file.
    if (ending.size() + longestCharacter > longestNameOf(form))
        ending = {};
    return fitted(std::string_view(name).substr(0, name.size() - ending.size()), ending, form);
}

URL importFolder(const URL& into, bool fake, const std::vector<std::string>& albumNames, NameForm form) {
    URL folder = into.appendingPathComponent(fake ? "decoy" : "vault");
    for (const std::string& name : albumNames)
        folder = folder.appendingPathComponent(safeFileName(name, form));
    return folder;
}

std::string importName(const SharedItem& item, int attempt, NameForm form) {
    const std::string name = safeFileName(item.preferredName.value_or(item.fileName), form);
    if (attempt < 2)
        return name;
    const std::string_view ending = dottedExtension(name);
    const std::string_view stem = std::string_view(name).substr(0, name.size() - ending.size());
    return fitted(stem, " (" + std::to_string(attempt) + ")" + std::string(ending), form);
}

} // namespace sela
