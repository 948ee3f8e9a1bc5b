#include "mediaservice/pictures/HEIFReferences.h"

#include <array>

namespace sela {

namespace {

// Real files have some hundred references of some bytes each.
constexpr std::int64_t largestReferenceBox = 1 << 20;
constexpr int mostBoxes = 1000;

std::uint64_t bigEndian(DataView bytes) {
    std::uint64_t number = 0;
    for (const std::byte byte : bytes)
        number = number << 8 | std::to_integer<std::uint64_t>(byte);
    return number;
}

/// A part of the file.
struct Range {
    std::int64_t start = 0;
    std::int64_t end = 0;
};

/// The content of the first box of that type among those that fill `parent`; empty when there is none.
Range findBox(const InputFile& file, Range parent, std::string_view type) {
    for (int i = 0; i < mostBoxes && parent.start < parent.end; ++i) {
        std::array<std::byte, 16> header{};
        const std::size_t count = file.readAt(parent.start, header);
        std::uint64_t size = bigEndian(std::span(header).first(4));
        std::int64_t headerSize = 8;
        if (size == 1) {
            size = bigEndian(std::span(header).subspan(8));
            headerSize = 16;
        } else if (size == 0) {
            size = static_cast<std::uint64_t>(parent.end - parent.start);
        }
        if (count < static_cast<std::size_t>(headerSize) || size < static_cast<std::uint64_t>(headerSize) ||
            size > static_cast<std::uint64_t>(parent.end - parent.start))
            return {};
        const std::int64_t end = parent.start + static_cast<std::int64_t>(size);
        if (asText(header).substr(4, 4) == type)
            return {parent.start + headerSize, end};
        parent.start = end;
    }
    return {};
}

} // namespace

std::vector<std::int64_t> descriptionReferences(const InputFile& file) {
    constexpr std::int64_t versionAndFlags = 4;
    Range meta = findBox(file, {0, file.size()}, "meta");
    meta.start += versionAndFlags;
    Range references = findBox(file, meta, "iref");
    references.start += versionAndFlags;
    const auto content = file.part(references.start, references.end - references.start, largestReferenceBox);
    std::vector<std::int64_t> places;
    if (!content)
        return places;
    for (DataView rest = *content; rest.size() >= 8;) {
        const std::uint64_t size = bigEndian(rest.first(4));
        if (size < 8 || size > rest.size())
            break;
        if (asText(rest).substr(4, 4) == "cdsc")
            places.push_back(references.end - static_cast<std::int64_t>(rest.size()) + 4);
        rest = rest.subspan(static_cast<std::size_t>(size));
    }
    return places;
}

} // namespace sela
