#include "store/AlbumPath.h"

#include "platform/foundation/UTF8.h"
#include "store/ShareExtensionError.h"

#include <algorithm>

namespace sela {

Result<std::vector<std::string>> albumPath(std::string_view text) {
    constexpr std::size_t levels = 2;
    std::vector<std::string> names(1);
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '/')
            names.emplace_back();
        else if (text[i] == '\\' && i + 1 < text.size())
            names.back() += text[++i];
        else
            names.back() += text[i];
    }
    const std::string album = "album \"" + std::string(text) + "\": ";
    if (!isValidUTF8(text))
        return ShareExtensionError::make(album + "the name is not UTF-8");
    if (std::ranges::any_of(names, &std::string::empty))
        return ShareExtensionError::make(album + "a name is missing");
    if (names.size() > levels)
        return ShareExtensionError::make(album + "albums have two levels");
    return names;
}

std::string albumPathText(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) {
        if (&name != &names.front())
            text += '/';
        for (const char c : name) {
            if (c == '/' || c == '\\')
                text += '\\';
            text += c;
        }
    }
    return text;
}

} // namespace sela
