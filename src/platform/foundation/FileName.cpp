#include "platform/foundation/FileName.h"

#include "platform/foundation/URL.h"
#include "platform/foundation/UTF8.h"

namespace sela {

namespace {

/// The longest prefix of `text` of at most `size` bytes that ends between two characters.
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

} // namespace

std::pair<std::string_view, std::string_view> stemAndExtension(std::string_view name) {
    const std::size_t extension = pathExtension(name).size();
    const std::size_t stem = extension == 0 ? name.size() : name.size() - extension - 1;
    return {name.substr(0, stem), name.substr(stem)};
}

std::string fittedFileName(std::string_view stem, std::string_view ending, std::size_t longest) {
    ending = shortened(ending, longest);
    return std::string(shortened(stem, longest - ending.size())) + std::string(ending);
}

} // namespace sela
