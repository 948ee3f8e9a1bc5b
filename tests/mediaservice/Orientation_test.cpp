#include "mediaservice/pictures/Orientation.h"

#include <gtest/gtest.h>
#include <string>

namespace sela {
namespace {

/// A picture with a letter a pixel.
PixelBuffer picture(int width, const std::string& letters) {
    PixelBuffer pixels{width, static_cast<int>(letters.size()) / width, {}};
    for (const char letter : letters)
        pixels.bytes.insert(pixels.bytes.end(), 4, static_cast<std::uint8_t>(letter));
    return pixels;
}

std::string letters(const PixelBuffer& pixels) {
    std::string text;
    for (std::size_t i = 0; i < pixels.bytes.size(); i += 4)
        text += static_cast<char>(pixels.bytes[i]);
    return text;
}

TEST(Orientation, EachNumberIsTurnedUpright) {
    // Stored as: abc
    //            def
    struct Case {
        std::uint32_t number;
        int width;
        const char* upright;
    };
    for (const Case& each :
         {Case{1, 3, "abcdef"}, Case{2, 3, "cbafed"}, Case{3, 3, "fedcba"}, Case{4, 3, "defabc"},
          Case{5, 2, "adbecf"}, Case{6, 2, "daebfc"}, Case{7, 2, "fcebda"}, Case{8, 2, "cfbead"},
          Case{0, 3, "abcdef"}, Case{9, 3, "abcdef"}}) {
        const PixelBuffer turned = upright(picture(3, "abcdef"), orientationOfNumber(each.number));
        EXPECT_EQ(letters(turned), each.upright) << each.number;
        EXPECT_EQ(turned.width, each.width) << each.number;
    }
}

} // namespace
} // namespace sela
