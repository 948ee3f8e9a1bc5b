#include "mediaservice/pictures/EXIF.h"

#include <gtest/gtest.h>
#include <string>

namespace sela {
namespace {

using namespace std::string_literals;

Orientation orientationOf(const std::string& block) {
    return orientationOfEXIF(asData(block));
}

// One directory with one entry: the orientation, a SHORT of 6.
const std::string little = "II*\0\x08\0\0\0\x01\0\x12\x01\x03\0\x01\0\0\0\x06\0\0\0\0\0\0\0"s;
const std::string big = "MM\0*\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0\x06\0\0\0\0\0\0"s;

TEST(EXIF, TellsTheOrientationInEitherByteOrderAndAnyWholeNumber) {
    EXPECT_EQ(orientationOf("Exif\0\0"s + little), Orientation::right);
    struct Case {
        char type;
        const char* bigValue;
    };
    for (const Case& each : {Case{1, "\x06\0\0\0"}, Case{3, "\0\x06\0\0"}, Case{4, "\0\0\0\x06"},
                             Case{6, "\x06\0\0\0"}, Case{8, "\0\x06\0\0"}, Case{9, "\0\0\0\x06"}}) {
        std::string block = little;
        block[12] = each.type;
        EXPECT_EQ(orientationOf(block), Orientation::right) << int{each.type};
        block = big;
        block[13] = each.type;
        EXPECT_EQ(orientationOf(block.replace(18, 4, each.bigValue, 4)), Orientation::right)
            << int{each.type};
    }
}

TEST(EXIF, BrokenBlocksCountAsUpright) {
    const auto replaced = [](std::size_t place, const std::string& bytes) {
        std::string block = little;
        return block.replace(place, bytes.size(), bytes);
    };
    for (const std::string& block :
         {""s, "Exif\0\0"s, "II"s, little.substr(0, 21), replaced(0, "IM"), replaced(2, "+"),
          replaced(4, "\xFF\xFF\xFF\xFF"), // the directory lies behind the end
          replaced(8, "\xFF\xFF"),         // more entries than bytes
          replaced(12, "\x05"),            // the value is a fraction
          replaced(14, "\xFF\xFF\xFF\xFF"), replaced(14, "\0\0\0\0"s), replaced(18, "\x09")})
        EXPECT_EQ(orientationOf(block), Orientation::up);
}

} // namespace
} // namespace sela
