#include "mediaservice/pictures/AreaScaler.h"

#include <algorithm>
#include <cmath>

namespace sela {

namespace {

using Sums = std::uint32_t __attribute__((vector_size(16)));
using Floats = float __attribute__((vector_size(16)));

Floats pixelAt(const std::uint32_t* sums, std::size_t pixel) {
    Sums channels;
    __builtin_memcpy(&channels, sums + 4 * pixel, sizeof channels);
    return __builtin_convertvector(channels, Floats);
}

/// The sum of the pixels between two places given in 1/256 pixels.
Floats areaBetween(const std::uint32_t* sums, std::uint32_t begin, std::uint32_t end) {
    const std::size_t first = begin / 256;
    const std::size_t last = (end - 1) / 256;
    if (first == last)
        return pixelAt(sums, first) * static_cast<float>(end - begin);
    Floats whole{};
    for (std::size_t pixel = first + 1; pixel < last; ++pixel)
        whole += pixelAt(sums, pixel);
    const auto firstPart = static_cast<float>((first + 1) * 256 - begin);
    const auto lastPart = static_cast<float>(end - last * 256);
    return whole * 256.0F + pixelAt(sums, first) * firstPart + pixelAt(sums, last) * lastPart;
}

// Half a gigapixel: the slowest decoder just finishes it within a request's time limit.
constexpr std::int64_t mostSourcePixels = std::int64_t{512} * 1000 * 1000;

} // namespace

bool isDecodableSize(PictureSize size) {
    return size.width >= 1 && size.height >= 1 && size.width <= largestSourceSide &&
           size.height <= largestSourceSide && std::int64_t{size.width} * size.height <= mostSourcePixels;
}

PictureSize fitted(PictureSize size, PictureBounds bounds) {
    const auto [shorter, longer] = std::minmax({size.width, size.height});
    double factor = std::min(1.0, static_cast<double>(bounds.longerSide) / longer);
    if (bounds.shorterSide > 0)
        factor = std::min(factor, static_cast<double>(bounds.shorterSide) / shorter);
    return {std::max(1, static_cast<int>(std::lround(size.width * factor))),
            std::max(1, static_cast<int>(std::lround(size.height * factor)))};
}

AreaScaler::AreaScaler(PictureSize source, PictureSize target)
    : source_(source), result_{target.width, target.height, {}} {
    const auto width = static_cast<std::size_t>(target.width);
    result_.bytes.resize(4 * width * static_cast<std::size_t>(target.height));
    sums_.resize(4 * static_cast<std::size_t>(source.width));
    boundaries_.reserve(width + 1);
    for (int column = 0; column <= target.width; ++column)
        boundaries_.push_back(boundary(column, source.width, target.width));
}

std::uint32_t AreaScaler::boundary(int index, int sourceLength, int targetLength) {
    const auto place = std::uint64_t{256} * static_cast<std::uint64_t>(sourceLength) *
                       static_cast<std::uint64_t>(index) / static_cast<std::uint64_t>(targetLength);
    return static_cast<std::uint32_t>(place);
}

void AreaScaler::addRow(const std::uint8_t* row) {
    if (nextRow_ >= source_.height)
        return;
    std::uint32_t begin = static_cast<std::uint32_t>(nextRow_) * 256;
    const std::uint32_t end = begin + 256;
    ++nextRow_;
    // At most two rows of the result share a row of the source, since nothing is made larger.
    while (begin < end) {
        const std::uint32_t targetBegin = boundary(targetRow_, source_.height, result_.height);
        const std::uint32_t targetEnd = boundary(targetRow_ + 1, source_.height, result_.height);
        const std::uint32_t partEnd = std::min(end, targetEnd);
        accumulate(row, partEnd - begin);
        begin = partEnd;
        if (partEnd == targetEnd)
            finishTargetRow(targetEnd - targetBegin);
    }
}

void AreaScaler::accumulate(const std::uint8_t* row, std::uint32_t weight) {
    // The sums cannot overflow: 65,535 rows * 256 * 255 is below 2^32.
    std::uint32_t* const sums = sums_.data();
    const std::size_t count = sums_.size();
    if (weight == 256) {
        for (std::size_t i = 0; i < count; ++i)
            sums[i] += std::uint32_t{row[i]} << 8;
        return;
    }
    for (std::size_t i = 0; i < count; ++i)
        sums[i] += row[i] * weight;
}

void AreaScaler::finishTargetRow(std::uint32_t weight) {
    const std::size_t rowStart =
        4 * static_cast<std::size_t>(result_.width) * static_cast<std::size_t>(targetRow_);
    std::uint8_t* out = result_.bytes.data() + rowStart;
    for (std::size_t column = 0; column + 1 < boundaries_.size(); ++column) {
        const std::uint32_t begin = boundaries_[column];
        const std::uint32_t end = boundaries_[column + 1];
        const float area = static_cast<float>(end - begin) * static_cast<float>(weight);
        const Floats mean = areaBetween(sums_.data(), begin, end) / area;
        for (int channel = 0; channel < 4; ++channel)
            *out++ = static_cast<std::uint8_t>(std::min(mean[channel] + 0.5F, 255.0F));
    }
    std::ranges::fill(sums_, 0U);
    ++targetRow_;
}

} // namespace sela
