#include "host/GaussianBlur.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace sela {

namespace {

/// One half of the kernel, the middle first; all of it sums to 1.
std::vector<float> kernel(double deviation) {
    const int radius = static_cast<int>(std::ceil(3 * deviation));
    std::vector<float> weights;
    double sum = 0;
    for (int distance = 0; distance <= radius; ++distance) {
        const double weight = std::exp(-distance * distance / (2 * deviation * deviation));
        weights.push_back(static_cast<float>(weight));
        sum += distance == 0 ? weight : 2 * weight;
    }
    for (float& weight : weights)
        weight /= static_cast<float>(sum);
    return weights;
}

/// Blurs along the rows of a `width` by `height` block and stores the result with rows and columns swapped,
/// so that two calls blur both ways. Most rows of a rectangle are the same, and are blurred once.
std::vector<float> blurRowsTransposed(const std::vector<float>& block, int width, int height,
                                      const std::vector<float>& weights) {
    const int radius = static_cast<int>(weights.size()) - 1;
    std::vector<float> result(block.size());
    std::vector<float> padded(static_cast<std::size_t>(width + 2 * radius));
    std::vector<float> blurred(static_cast<std::size_t>(width));
    for (int y = 0; y < height; ++y) {
        const auto row = block.begin() + std::ptrdiff_t{y} * width;
        if (y == 0 || !std::equal(row, row + width, row - width)) {
            std::copy_n(row, width, padded.begin() + radius);
            for (int x = 0; x < width; ++x) {
                const float* const middle = padded.data() + x + radius;
                float value = weights[0] * *middle;
                for (int distance = 1; distance <= radius; ++distance)
                    value +=
                        weights[static_cast<std::size_t>(distance)] * (middle[-distance] + middle[distance]);
                blurred[static_cast<std::size_t>(x)] = value;
            }
        }
        for (int x = 0; x < width; ++x)
            result[static_cast<std::size_t>(x) * static_cast<std::size_t>(height) +
                   static_cast<std::size_t>(y)] = blurred[static_cast<std::size_t>(x)];
    }
    return result;
}

} // namespace

QImage gaussianBlur(const QImage& coverage, double deviation) {
    if (deviation <= 0 || coverage.isNull())
        return coverage;
    const int width = coverage.width();
    const int height = coverage.height();
    std::vector<float> block;
    block.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (int y = 0; y < height; ++y)
        block.insert(block.end(), coverage.constScanLine(y), coverage.constScanLine(y) + width);
    const std::vector<float> weights = kernel(deviation);
    block = blurRowsTransposed(block, width, height, weights);
    block = blurRowsTransposed(block, height, width, weights);
    QImage result(width, height, QImage::Format_Alpha8);
    for (int y = 0; y < height; ++y) {
        const auto row = block.begin() + std::ptrdiff_t{y} * width;
        std::transform(row, row + width, result.scanLine(y),
                       [](float value) { return static_cast<uchar>(std::lround(std::min(value, 255.0F))); });
    }
    return result;
}

} // namespace sela
