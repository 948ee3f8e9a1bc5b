#include "platform/media/UIImage.h"

#include "media/MediaSamples.h"

#include <cmath>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace sela {
namespace {

PixelBuffer plainPixels(int width, int height, std::uint32_t colour) {
    PixelBuffer pixels{width, height, {}};
    for (int i = 0; i < width * height; ++i)
        for (const int shift : {24, 16, 8, 0})
            pixels.bytes.push_back(static_cast<std::uint8_t>(colour >> shift));
    return pixels;
}

/// What a JPEG file shows in its middle.
std::uint32_t middleOf(const Data& jpeg) {
    const std::string path =
        std::filesystem::temp_directory_path() / ("sela-jpeg-" + std::to_string(::getpid()));
    std::ofstream(path, std::ios::binary) << asText(jpeg);
    const auto image = UIImage::contentsOfFile(path, 100);
    std::filesystem::remove(path);
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
        EXPECT_EQ(image->assetName(), name);
        EXPECT_EQ(image->width(), 142);
        EXPECT_EQ(image->height(), 128);
        EXPECT_FALSE(image->pixels());
        EXPECT_FALSE(image->jpegData(0.9));
    }
    EXPECT_FALSE(UIImage::named("no such image"));
    EXPECT_FALSE(UIImage::named(""));
}

TEST(UIImage, RenderingModeBelongsToTheCopy) {
    const UIImage image = UIImage::fromPixels(plainPixels(2, 2, 0xFF0000FF));
    const UIImage stencil = image.withRenderingMode(UIImage::RenderingMode::alwaysTemplate);
    EXPECT_EQ(stencil.renderingMode(), UIImage::RenderingMode::alwaysTemplate);
    EXPECT_EQ(image.renderingMode(), UIImage::RenderingMode::automatic);
    EXPECT_EQ(stencil.pixels(), image.pixels());
}

TEST(UIImage, JPEGShowsTransparentPartsOnWhite) {
    struct Case {
        std::uint32_t premultiplied;
        std::uint32_t shown;
    };
    for (const Case& each :
         {Case{0x204080FF, 0x204080FF}, Case{0x00000000, 0xFFFFFFFF}, Case{0x80000080, 0xFF7F7FFF},
          Case{0xFFFFFF10, 0xFFFFFFFF}}) // brighter than its alpha allows: no wrap-around
    {
        const auto jpeg = UIImage::fromPixels(plainPixels(17, 9, each.premultiplied)).jpegData(0.9);
        ASSERT_TRUE(jpeg);
        EXPECT_LE(largestDifference(middleOf(*jpeg), each.shown), 4) << std::hex << each.premultiplied;
    }
}

TEST(UIImage, QualityDecidesTheSizeOfJPEG) {
    const auto image = UIImage::contentsOfFile(sample("larger.png"), 640);
    ASSERT_TRUE(image);
    const auto size = [&](double quality) { return image->jpegData(quality).value_or(Data()).size(); };
    EXPECT_GT(size(0.0), 0U);
    EXPECT_LT(size(0.0), size(0.5));
    EXPECT_LT(size(0.5), size(1.0));
    EXPECT_EQ(size(-1), size(0.0));
    EXPECT_EQ(size(2), size(1.0));
}

TEST(UIImage, WhatJPEGCannotHoldIsNotEncoded) {
    EXPECT_FALSE(UIImage::fromPixels({}).jpegData(0.9));
    EXPECT_FALSE(UIImage::fromPixels(plainPixels(65501, 1, 0)).jpegData(0.9));
    EXPECT_TRUE(UIImage::fromPixels(plainPixels(65500, 1, 0)).jpegData(0.9));
}

TEST(UIImage, PixelsOfAnotherSizeStopTheProcess) {
    EXPECT_DEATH(UIImage::fromPixels({2, 2, std::vector<std::uint8_t>(15)}), "size that they claim");
    EXPECT_DEATH(UIImage::fromPixels({-1, -1, std::vector<std::uint8_t>(4)}), "size that they claim");
}

} // namespace
} // namespace sela
