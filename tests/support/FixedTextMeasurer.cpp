#include "support/FixedTextMeasurer.h"

#include "platform/foundation/UTF8.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

namespace sela {

namespace {

struct Character {
    char32_t codePoint;
    double size;

    double width() const { return codePoint == U'\n' ? 0 : size * FixedTextMeasurer::widthPerSize; }
};

struct Line {
    std::size_t end;  ///< behind its last character
    std::size_t next; ///< where the next one starts
};

std::vector<Character> characters(const NSAttributedString& text) {
    std::vector<Character> result;
    for (const NSAttributedString::Run& run : text.runs()) {
        const double size = run.attributes.font ? run.attributes.font->size() : 0;
        for (std::string_view rest = run.text; !rest.empty();) {
            const DecodedCharacter decoded = decodeUTF8(rest);
            result.push_back({decoded.codePoint, size});
            rest.remove_prefix(decoded.length);
        }
    }
    return result;
}

Line lineFrom(const std::vector<Character>& text, std::size_t start, double maximumWidth) {
    double width = 0;
    std::size_t lastSpace = start;
    for (std::size_t index = start; index < text.size(); ++index) {
        const Character& character = text[index];
        if (character.codePoint == U'\n')
            return {index, index + 1};
        if (character.codePoint == U' ') {
            lastSpace = index;
        } else if (width + character.width() > maximumWidth && index > start) {
            return lastSpace > start ? Line{lastSpace, lastSpace + 1} : Line{index, index};
        }
        width += character.width();
    }
    return {text.size(), text.size()};
}

} // namespace

CGSize FixedTextMeasurer::size(const NSAttributedString& text, double maximumWidth, int maximumLines) const {
    const std::vector<Character> all = characters(text);
    CGSize result;
    int lines = 0;
    for (std::size_t start = 0; start < all.size() && (maximumLines == 0 || lines < maximumLines); ++lines) {
        // The last line that is allowed takes all that is left, cut off where it does not fit.
        const bool last = lines + 1 == maximumLines;
        const Line line = lineFrom(all, start, last ? unlimitedWidth : maximumWidth);
        double width = 0;
        double fontSize = all[start].size;
        for (std::size_t index = start; index < line.end; ++index) {
            width += all[index].width();
            fontSize = std::max(fontSize, all[index].size);
        }
        result.width = std::max(result.width, std::min(width, maximumWidth));
        result.height += fontSize * heightPerSize;
        start = line.next;
    }
    return result;
}

} // namespace sela
