#include "mediaservice/pictures/AreaScaler.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace sela {
namespace {

PixelBuffer randomPixels(int width, int height, std::mt19937& random) {
    PixelBuffer pixels{width, height, {}};
    for (int i = 0; i < 4 * width * height; ++i)
        pixels.bytes.push_back(static_cast<std::uint8_t>(random()));
    return pixels;
}

PixelBuffer scaled(const PixelBuffer& source, PictureSize target) {
    AreaScaler scaler({source.width, source.height}, target);
    for (int y = 0; y < source.height; ++y)
        scaler.addRow(source.bytes.data() + static_cast<std::ptrdiff_t>(4) * source.width * y);
    EXPECT_TRUE(scaler.isComplete());
    return scaler.take();
}

/// How much of [position, position + 1) lies under cell `index` of `cells` over `length`.
double share(int position, int index, int length, int cells) {
    const double begin = std::max<double>(position, static_cast<double>(index) * length / cells);
    const double end = std::min<double>(position + 1, static_cast<double>(index + 1) * length / cells);
    return std::max(0.0, end - begin);
}

double meanUnder(const PixelBuffer& source, PictureSize target, int x, int y, int channel) {
    double sum = 0;
    double area = 0;
    for (int row = 0; row < source.height; ++row)
        for (int column = 0; column < source.width; ++column) {
            const double part =
                share(row, y, source.height, target.height) * share(column, x, source.width, target.width);
            const auto place = 4 * (static_cast<std::size_t>(row) * static_cast<std::size_t>(source.width) +
                                    static_cast<std::size_t>(column));
            sum += part * source.bytes[place + static_cast<std::size_t>(channel)];
            area += part;
        }
    return sum / area;
}

TEST(AreaScaler, EachPixelIsTheMeanOfItsArea) {
    std::mt19937 random(1);
    for (const auto& [source, target] :
         {std::pair(PictureSize{16, 16}, PictureSize{4, 4}),
          std::pair(PictureSize{17, 13}, PictureSize{5, 7}), std::pair(PictureSize{9, 9}, PictureSize{8, 8}),
          std::pair(PictureSize{31, 2}, PictureSize{3, 1}),
          std::pair(PictureSize{1, 40}, PictureSize{1, 3})}) {
        const PixelBuffer pixels = randomPixels(source.width, source.height, random);
        const PixelBuffer result = scaled(pixels, target);
        ASSERT_EQ((PictureSize{result.width, result.height}), target);
        for (int y = 0; y < target.height; ++y)
            for (int x = 0; x < target.width; ++x)
                for (int channel = 0; channel < 4; ++channel) {
                    const auto place =
                        4 * (static_cast<std::size_t>(y) * static_cast<std::size_t>(target.width) +
                             static_cast<std::size_t>(x)) +
                        static_cast<std::size_t>(channel);
                    // Shares are kept in 1/256 of a pixel.
                    EXPECT_NEAR(result.bytes[place], meanUnder(pixels, target, x, y, channel), 2.0);
                }
    }
}

TEST(AreaScaler, KeepsPixelsThatNeedNoScaling) {
    std::mt19937 random(2);
    const PixelBuffer pixels = randomPixels(23, 11, random);
    EXPECT_EQ(scaled(pixels, {23, 11}).bytes, pixels.bytes);
}

TEST(AreaScaler, LongColumnsOfWhiteDoNotOverflow) {
    PixelBuffer pixels{1, largestSourceSide, {}};
    pixels.bytes.assign(std::size_t{4} * largestSourceSide, 255);
    EXPECT_EQ(scaled(pixels, {1, 1}).bytes, std::vector<std::uint8_t>(4, 255));
    EXPECT_EQ(scaled(pixels, {1, 3}).bytes, std::vector<std::uint8_t>(12, 255));
}

TEST(AreaScaler, RowsBeyondTheLastAreIgnored) {
    AreaScaler scaler({1, 2}, {1, 1});
    const std::uint8_t row[4] = {10, 20, 30, 40};
    for (int i = 0; i < 5; ++i)
        scaler.addRow(row);
    EXPECT_EQ(scaler.take().bytes, std::vector<std::uint8_t>(row, row + 4));
}

TEST(AreaScaler, FittedSizesKeepTheShapeAndNeverVanishOrGrow) {
    EXPECT_EQ(fitted({8064, 6048}, 534), (PictureSize{534, 401}));
    EXPECT_EQ(fitted({6048, 8064}, 534), (PictureSize{401, 534}));
    EXPECT_EQ(fitted({534, 10}, 534), (PictureSize{534, 10}));
    EXPECT_EQ(fitted({65535, 1}, 100), (PictureSize{100, 1}));
    EXPECT_EQ(fitted({10, 20}, 1), (PictureSize{1, 1}));
    EXPECT_EQ(fitted({1080, 10000}, PictureBounds::filling(356)), (PictureSize{356, 3296}));
    EXPECT_EQ(fitted({1080, 40000}, PictureBounds::filling(356)), (PictureSize{111, 4096}));
    EXPECT_EQ(fitted({640, 160}, PictureBounds::filling(160)), (PictureSize{640, 160}));
}

} // namespace
} // namespace sela
