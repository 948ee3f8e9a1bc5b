#include "vault/ImportPlace.h"

#include "platform/foundation/FileName.h"
#include "platform/foundation/UTF8.h"

#include <tuple>
#include <utility>

namespace sela {

namespace {

/// eCryptfs leaves 143 of that.
constexpr std::size_t longestPortableName = 140;
constexpr std::size_t longestCharacter = 4;

/// Control characters, line separators, and overrides of the text direction. The directional marks used in
/// Arabic and Hebrew names are kept.
bool misleads(char32_t c) {
    const bool control = c < 0x20 || (c >= 0x7F && c < 0xA0);
    return control || (c >= 0x2028 && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

std::size_t longestNameOf(NameForm form) {
    return form == NameForm::own ? longestFileName : longestPortableName;
}

bool isForbidden(char32_t character, NameForm form) {
    constexpr std::u32string_view foreign = U":\"<>|?*\\";
    return character == '/' || misleads(character) ||
           (form == NameForm::portable && foreign.find(character) != std::u32string_view::npos);
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
    auto [stem, extension] = stemAndExtension(name);
    // An extension needs a character before it; otherwise its dot would hide the file.
    if (extension.size() + longestCharacter > longestNameOf(form))
        std::tie(stem, extension) = std::pair(std::string_view(name), std::string_view());
    return fittedFileName(stem, extension, longestNameOf(form));
}

URL importFolder(const URL& into, bool fake, const std::vector<std::string>& albumNames, NameForm form) {
    URL folder = into.appendingPathComponent(fake ? "decoy" : "vault");
    for (const std::string& name : albumNames)
        folder = folder.appendingPathComponent(safeFileName(name, form));
    return folder;
}

std::string importName(const SharedItem& item, int attempt, NameForm form) {
    std::string name = safeFileName(item.preferredName.value_or(item.fileName), form);
    if (attempt < 2)
        return name;
    const auto [stem, extension] = stemAndExtension(name);
    return fittedFileName(stem, " (" + std::to_string(attempt) + ")" + std::string(extension),
                          longestNameOf(form));
}

} // namespace sela
