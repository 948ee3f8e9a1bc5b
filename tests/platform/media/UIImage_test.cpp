#include "platform/media/UIImage.h"

#include "media/MediaSamples.h"
#include "support/BitmapFile.h"
#include "support/TemporaryHome.h"

#include <cmath>
#include <fcntl.h>
#include <gtest/gtest.h>

namespace sela {
namespace {

/// What a JPEG file shows in its middle.
std::uint32_t middleOf(const EncodedImage& jpeg) {
    const TemporaryHome home;
    const auto image = UIImage::contentsOfFile(home.write("a.jpg", asText(jpeg.bytes())), 100);
    return image ? pixelAt(*image->pixels(), 0.5, 0.5) : 0;
}

int largestDifference(std::uint32_t a, std::uint32_t b) {
    int largest = 0;
    for (const int shift : {24, 16, 8, 0})
        largest = std::max(
            largest, std::abs(static_cast<int>(a >> shift & 0xFF) - static_cast<int>(b >> shift & 0xFF)));
    return largest;
}

TEST(UIImage, NamedAssetsHaveTheirSizeInPoints) {
    for (const char* name : {"SelaPicture", "audiosmall"}) {
        const auto image = UIImage::named(name);
        ASSERT_TRUE(image) << name;
        EXPECT_EQ(image->width(), 142);
        EXPECT_EQ(image->height(), 128);
    }
    EXPECT_FALSE(UIImage::named("no such image"));
    EXPECT_FALSE(UIImage::named(""));
}

FileDescriptor opened(const std::string& path) {
    return FileDescriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
}

TEST(UIImage, OfAnOpenFileIsEncodedInItsFullSizeAsItIsSeen) {
    struct Case {
        const char* name;
        int width;
        int height;
        const char* quarters;
    };
    for (const Case& each :
         {Case{"larger.png", 640, 480, "rgbw"}, Case{"orientation-6.jpg", 120, 160, "brwg"},
          Case{"profile.jpg", 160, 120, "bgrw"}, Case{"plain.bmp", 160, 120, "rgbw"},
          Case{"thumbnail.heic", 640, 480, "rgbw"}, Case{"lossy.webp", 160, 120, "rgbw"},
          Case{"huge.png", 6000, 5000, "rgbw"}}) {
        const auto image = UIImage::contentsOfOpenFile(opened(sample(each.name)), 16);
        ASSERT_TRUE(image) << each.name;
        EXPECT_LE(std::max(image->width(), image->height()), 16) << each.name;
        const auto jpeg = image->jpegData(0.9);
        ASSERT_TRUE(jpeg) << each.name;
        const TemporaryHome home;
        const auto read =
            UIImage::contentsOfFile(home.write("a.jpg", asText(jpeg->bytes())), maximumPictureSide);
        ASSERT_TRUE(read) << each.name;
        EXPECT_EQ(quarters(*read->pixels()), each.quarters) << each.name;
        EXPECT_NEAR(read->width(), std::min(each.width, maximumPictureSide), 1) << each.name;
        EXPECT_NEAR(read->height() * each.width, read->width() * each.height, each.width) << each.name;
    }
}

TEST(UIImage, JPEGShowsTransparentPartsOnWhite) {
    const TemporaryHome home;
    for (const auto& [stored, shown] :
         {std::pair(0xFF204080U, 0x204080FFU), std::pair(0x80FF0000U, 0xFF7F7FFFU)}) {
        const auto image =
            UIImage::contentsOfOpenFile(opened(home.write("a.bmp", bitmapFile(17, 9, stored))), 64);
        ASSERT_TRUE(image);
        EXPECT_LE(largestDifference(middleOf(*image->jpegData(0.9)), shown), 4) << std::hex << stored;
    }
}

TEST(UIImage, QualityDecidesTheSizeOfJPEG) {
    const auto image = UIImage::contentsOfOpenFile(opened(sample("photo.jpg")), 64);
    ASSERT_TRUE(image);
    EXPECT_LT(image->jpegData(0.3)->bytes().size(), image->jpegData(0.9)->bytes().size());
}

TEST(UIImage, OfAnOpenFileIsWholeOrNone) {
    for (const char* name : {"cut-90-photo.jpg", "huge.heic", "text.jpg", "cut-quarters.png"})
        EXPECT_FALSE(UIImage::contentsOfOpenFile(opened(sample(name)), 16)) << name;
}

TEST(UIImage, WhatJPEGCannotHoldIsNotEncoded) {
    const TemporaryHome home;
    for (const int width : {65500, 65501}) {
        const auto image =
            UIImage::contentsOfOpenFile(opened(home.write("a.bmp", bitmapFile(width, 1, ~0U))), 64);
        ASSERT_TRUE(image);
        EXPECT_EQ(image->jpegData(0.9).has_value(), width == 65500);
    }
    EXPECT_FALSE(UIImage::fromPixels({1, 1, {0, 0, 0, 0}}).jpegData(0.9));
}

TEST(UIImage, PixelsOfAnotherSizeStopTheProcess) {
    EXPECT_DEATH(UIImage::fromPixels({2, 2, std::vector<std::uint8_t>(15)}), "size that they claim");
    EXPECT_DEATH(UIImage::fromPixels({-1, -1, std::vector<std::uint8_t>(4)}), "size that they claim");
}

} // namespace
} // namespace sela
