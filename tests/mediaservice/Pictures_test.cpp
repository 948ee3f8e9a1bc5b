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
             Case{"tiny.jpg", 2, 2, "rgbw"},
             Case{"profile.jpg", 160, 120, "bgrw"}, // its profile exchanges red and blue
             Case{"trailing.jpg", 160, 120, "rgbw"},
             Case{"quarters.png", 160, 120, "rgbw"},
             Case{"sixteen.png", 160, 120, "rgbw"},
             Case{"interlaced.png", 160, 120, "rgbw"},
             Case{"palette.png", 160, 120, "rgbw"},
             Case{"animated.gif", 160, 120, "rgbw"},
             Case{"plain.bmp", 160, 120, "rgbw"},
             Case{"palette.bmp", 160, 120, "rgbw"},
             Case{"os2.bmp", 160, 120, "rgbw"},
             Case{"os2-16.bmp", 160, 120, "rgbw"},
             Case{"os2-64.bmp", 160, 120, "rgbw"},
             Case{"two-bits.bmp", 160, 120, "rgbw"},
             Case{"top-down.bmp", 160, 120, "rgbw"},
             Case{"five-bits.bmp", 160, 120, "rgbw"},
             Case{"six-bits.bmp", 160, 120, "rgbw"},
             Case{"ten-bits.bmp", 160, 120, "rgbw"},
             Case{"alpha-unset.bmp", 160, 120, "rgbw"}, // names bits of alpha that are all zero
             Case{"no-red.bmp", 160, 120, "kgb?"},      // its mask for red has no bits
             Case{"jpeg-inside.bmp", 160, 120, "rgbw"},
             Case{"runs-8.bmp", 160, 120, "rgbw"},
             Case{"runs-4.bmp", 160, 120, "rgbw"},
             Case{"runs-24.bmp", 160, 120, "rgbw"},
             Case{"indexed.pict", 160, 120, "rgbw"},
             Case{"direct.pict", 160, 120, "rgbw"},
             Case{"quicktime.pict", 160, 120, "rgbw"},
             Case{"lossy.webp", 160, 120, "rgbw"},
             Case{"animated.webp", 160, 120, "rgbw"},
             Case{"plain.heic", 640, 480, "rgbw"},
             Case{"ten-bit.heic", 640, 480, "rgbw"},
             Case{"thumbnail.heic", 640, 480, "rgbw"},
             Case{"rotated.heic", 480, 640, "gwrb"}, // a quarter turn counterclockwise
             Case{"mirrored.heic", 640, 480, "grwb"},
             Case{"grid.heic", 640, 480, "rgbw"},               // four tiles
             Case{"gain-map.heic", 640, 480, "rgbw"},           // as current phones write
             Case{"thumbnail-square.heic", 640, 480, "rgbw"},   // of another shape, and red
             Case{"thumbnail-boasting.heic", 640, 480, "rgbw"}, // smaller than the file says, and red
             Case{"huge.heic", 640, 480, "rgbw"},               // 200 megapixels; its thumbnail
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
            const int expected = std::min(side, std::max(each.width, each.height));
            EXPECT_EQ(std::max(small->width(), small->height()), expected) << each.name;
            EXPECT_NEAR(std::min(small->width(), small->height()), expected * 0.75, 1) << each.name;
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

TEST(Pictures, ThatFillAFrameHaveItsPixelsOnTheirShorterSide) {
    for (const char* name : {"baseline.jpg", "quarters.png", "lossy.webp", "thumbnail.heic", "preview.dng"}) {
        const auto image = UIImage::contentsOfFile(sample(name), PictureBounds::filling(90));
        ASSERT_TRUE(image) << name;
        EXPECT_EQ(image->width(), 120) << name;
        EXPECT_EQ(image->height(), 90) << name;
    }
}

TEST(Pictures, KeepTransparencyPremultiplied) {
    for (const char* name : {"alpha.png", "alpha.webp", "alpha.heic", "alpha.bmp", "alpha-bits.bmp"}) {
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

TEST(Pictures, OfAHighDynamicRangeShowPaperAsNearlyWhiteAndGreyAsGrey) {
    for (const char* name : {"perceptual.heic", "perceptual.png", "hybrid.png"}) {
        const auto image = UIImage::contentsOfFile(sample(name), 40);
        ASSERT_TRUE(image) << name;
        for (const auto& [x, level] : {std::pair(0.25, 225), std::pair(0.75, 100)})
            for (const int shift : {24, 16, 8})
                EXPECT_NEAR(pixelAt(*image->pixels(), x, 0.5) >> shift & 0xFF, level, 8) << name;
    }
}

TEST(Pictures, OfInksLookAsPrinted) {
    const auto image = UIImage::contentsOfFile(sample("cmyk.jpg"), largeEnough);
    ASSERT_TRUE(image);
    struct Case {
        double x, y;
        int red, green, blue;
    };
    for (const Case& each : {Case{0.25, 0.25, 237, 28, 36}, Case{0.75, 0.25, 0, 166, 80},
                             Case{0.25, 0.75, 46, 48, 146}, Case{0.75, 0.75, 255, 255, 255}}) {
        const std::uint32_t pixel = pixelAt(*image->pixels(), each.x, each.y);
        EXPECT_NEAR(pixel >> 24, each.red, 6);
        EXPECT_NEAR(pixel >> 16 & 0xFF, each.green, 6);
        EXPECT_NEAR(pixel >> 8 & 0xFF, each.blue, 6);
        EXPECT_EQ(pixel & 0xFF, 0xFFU);
    }
}

/// The share of a picture's rows that are there, from the top.
double shownPart(const PixelBuffer& pixels) {
    int rows = 0;
    while (rows < pixels.height && (pixelAt(pixels, 0.5, (rows + 0.5) / pixels.height) & 0xFF) == 0xFF)
        ++rows;
    return static_cast<double>(rows) / pixels.height;
}

TEST(Pictures, InJPEGThatAreCutShowTheRowsThatAreThere) {
    struct Case {
        const char* name;
        double part;
    };
    for (const int side : {320, 40})
        for (const Case& each : {Case{"cut-45-photo.jpg", 0.45}, Case{"cut-90-photo.jpg", 0.9},
                                 Case{"cut-45-photo-progressive.jpg", 1}}) {
            const auto image = UIImage::contentsOfFile(sample(each.name), side);
            const auto whole = UIImage::contentsOfFile(sample("photo.jpg"), side);
            ASSERT_TRUE(image && whole) << each.name;
            EXPECT_NEAR(shownPart(*image->pixels()), each.part, 0.1) << each.name;
            for (const double y : {0.05, each.part - 0.15}) {
                const std::uint32_t pixel = pixelAt(*image->pixels(), 0.5, y);
                const std::uint32_t expected = pixelAt(*whole->pixels(), 0.5, y);
                for (const int shift : {24, 16, 8})
                    EXPECT_NEAR(pixel >> shift & 0xFF, expected >> shift & 0xFF, 12) << each.name;
            }
        }
}

TEST(Pictures, InBMPShowNothingWhereRunsPassOver) {
    const auto image = UIImage::contentsOfFile(sample("runs-moved.bmp"), largeEnough);
    ASSERT_TRUE(image);
    EXPECT_EQ(pixelAt(*image->pixels(), 0.25, 0.25), 0U);
    EXPECT_EQ(quarters(*image->pixels()).substr(2), "bw");
    std::string lastRow; // of the upper half
    for (const int x : {0, 79, 80, 82, 83, 159})
        lastRow += colourName(pixelAt(*image->pixels(), (x + 0.5) / 160, 59.5 / 120));
    EXPECT_EQ(lastRow, "rrgggg");
}

TEST(Pictures, ThatAreCutOrNoneYieldNothing) {
    for (const char* name :
         {"cut-10-photo.jpg", "cut-quarters.png", "cut-interlaced.png", "cut-animated.gif", "cut-plain.bmp",
          "cut-runs.bmp", "no-masks.bmp", "lines.pict", "cut-lossy.webp", "cut-plain.heic", "cut-preview.dng",
          "text.jpg", "empty.jpg", "minute.mp4", "no-such-file.jpg"})
        EXPECT_FALSE(UIImage::contentsOfFile(sample(name), largeEnough)) << name;
    EXPECT_FALSE(UIImage::contentsOfFile(sample("baseline.jpg"), 0));
    EXPECT_FALSE(UIImage::contentsOfFile(sample("baseline.jpg"), -5));
}

} // namespace
} // namespace sela
