#include "media/MediaSamples.h"
#include "platform/media/UIImage.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>

namespace sela {
namespace {

constexpr int largeEnough = 1000;

TEST(Pictures, OfEachKindShowWhatIsInThem) {
    struct Case {
        const char* name;
        int width;
        int height;
        const char* quarters;
    };
    for (const Case& each : {
             Case{"baseline.jpg", 160, 120, "rgbw"},
             Case{"progressive.jpg", 160, 120, "rgbw"},
             Case{"cmyk.jpg", 160, 120, "rgbw"},
             Case{"profile.jpg", 160, 120, "bgrw"}, // its profile exchanges red and blue
             Case{"trailing.jpg", 160, 120, "rgbw"},
             Case{"quarters.png", 160, 120, "rgbw"},
             Case{"sixteen.png", 160, 120, "rgbw"},
             Case{"interlaced.png", 160, 120, "rgbw"},
             Case{"palette.png", 160, 120, "rgbw"},
             Case{"animated.gif", 160, 120, "rgbw"},
             Case{"plain.bmp", 160, 120, "rgbw"},
             Case{"palette.bmp", 160, 120, "rgbw"},
             Case{"lossy.webp", 160, 120, "rgbw"},
             Case{"animated.webp", 160, 120, "rgbw"},
             Case{"plain.heic", 640, 480, "rgbw"},
             Case{"ten-bit.heic", 640, 480, "rgbw"},
             Case{"thumbnail.heic", 640, 480, "rgbw"},
             Case{"rotated.heic", 480, 640, "gwrb"}, // a quarter turn counterclockwise
             Case{"mirrored.heic", 640, 480, "grwb"},
             Case{"grid.heic", 640, 480, "rgbw"}, // four tiles
             Case{"heic-named.jpg", 640, 480, "rgbw"},
             Case{"jpeg-named.heic", 160, 120, "rgbw"},
             Case{"preview.dng", 160, 120, "rgbw"},
             Case{"turned.dng", 120, 160, "brwg"},
         }) {
        const auto image = UIImage::contentsOfFile(sample(each.name), largeEnough);
        ASSERT_TRUE(image) << each.name;
        EXPECT_EQ(image->width(), each.width) << each.name;
        EXPECT_EQ(image->height(), each.height) << each.name;
        EXPECT_EQ(quarters(*image->pixels()), each.quarters) << each.name;
        EXPECT_EQ(pixelAt(*image->pixels(), 0.5, 0.5) & 0xFF, 0xFF) << each.name;

        for (const int side : {48, 16}) { // a part of what is stored, and the least that a JPEG is decoded to
            const auto small = UIImage::contentsOfFile(sample(each.name), side);
            ASSERT_TRUE(small) << each.name;
            EXPECT_EQ(std::max(small->width(), small->height()), side) << each.name;
            EXPECT_EQ(std::min(small->width(), small->height()), side * 3 / 4) << each.name;
            EXPECT_EQ(quarters(*small->pixels()), each.quarters) << each.name;
        }
    }
}

TEST(Pictures, AreTurnedUpright) {
    // The quarters of what is stored, seen as each number says.
    const char* const seen[] = {"rgbw", "grwb", "wbgr", "bwrg", "rbgw", "brwg", "wgbr", "gwrb"};
    for (int number = 1; number <= 8; ++number) {
        const auto image =
            UIImage::contentsOfFile(sample("orientation-" + std::to_string(number) + ".jpg"), 100);
        ASSERT_TRUE(image) << number;
        EXPECT_EQ(quarters(*image->pixels()), seen[number - 1]) << number;
        EXPECT_EQ(image->width() > image->height(), number <= 4) << number;
    }
}

TEST(Pictures, KeepTransparencyPremultiplied) {
    for (const char* name : {"alpha.png", "alpha.webp", "alpha.heic", "alpha.bmp"}) {
        const auto image = UIImage::contentsOfFile(sample(name), 40);
        ASSERT_TRUE(image) << name;
        const std::uint32_t red = pixelAt(*image->pixels(), 0.25, 0.25);
        EXPECT_NEAR(red & 0xFF, 0x80, 2) << name;
        EXPECT_NEAR(red >> 24, 0x80, 6) << name;
        EXPECT_NEAR(red >> 16 & 0xFF, 0, 6) << name;
    }
}

TEST(Pictures, GrayKeepsItsLevels) {
    const auto image = UIImage::contentsOfFile(sample("gray.jpg"), 40);
    ASSERT_TRUE(image);
    for (const double x : {0.25, 0.75}) {
        const std::uint32_t pixel = pixelAt(*image->pixels(), x, 0.25);
        EXPECT_EQ(pixel >> 24, pixel >> 16 & 0xFF);
        EXPECT_EQ(pixel >> 24, pixel >> 8 & 0xFF);
    }
    EXPECT_GT(pixelAt(*image->pixels(), 0.75, 0.75) >> 24, 250U);
}

TEST(Pictures, OfADNGAreItsSmallestPreviewThatIsLargeEnough) {
    const auto image = UIImage::contentsOfFile(sample("preview.dng"), 8);
    ASSERT_TRUE(image);
    EXPECT_EQ(pixelAt(*image->pixels(), 0.25, 0.25), 0xFF0000FFU); // the plain one, without JPEG's losses
    EXPECT_EQ(quarters(*image->pixels()), "rgbw");
}

TEST(Pictures, ThatAreCutOrNoneYieldNothing) {
    for (const char* name :
         {"cut-baseline.jpg", "cut-progressive.jpg", "cut-quarters.png", "cut-interlaced.png",
          "cut-animated.gif", "cut-plain.bmp", "cut-lossy.webp", "cut-plain.heic", "cut-preview.dng",
          "text.jpg", "empty.jpg", "minute.mp4", "no-such-file.jpg"})
        EXPECT_FALSE(UIImage::contentsOfFile(sample(name), largeEnough)) << name;
    EXPECT_FALSE(UIImage::contentsOfFile(sample("cut-progressive.jpg"), 16)); // its averages are there
    EXPECT_FALSE(UIImage::contentsOfFile(sample("baseline.jpg"), 0));
    EXPECT_FALSE(UIImage::contentsOfFile(sample("baseline.jpg"), -5));
}

} // namespace
} // namespace sela
