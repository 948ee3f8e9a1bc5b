#include "mediaservice/pictures/TIFFDirectory.h"

#include <algorithm>
#include <array>

namespace sela {

namespace {

constexpr std::uint16_t subdirectoriesTag = 330;
constexpr std::size_t mostSubdirectories = 8;
constexpr std::size_t entrySize = 12;

// Pictures have some dozens of entries; each may make the reader fetch the most numbers that are read of a
// tag.
constexpr std::uint32_t mostEntries = 1000;

// More numbers than this under one tag are no size, offset or orientation of a preview.
constexpr std::uint32_t mostNumbers = 16384;

std::uint32_t readNumber(std::span<const std::byte> bytes, bool bigEndian) {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const std::size_t place = bigEndian ? i : bytes.size() - 1 - i;
        number = number << 8 | std::to_integer<std::uint32_t>(bytes[place]);
    }
    return number;
}

/// Bytes of one value of a field type; 0 for types that are not integers.
std::size_t valueSize(std::uint32_t type) {
    switch (type) {
    case 1: // BYTE
    case 6: // SBYTE
        return 1;
    case 3: // SHORT
    case 8: // SSHORT
        return 2;
    case 4:  // LONG
    case 9:  // SLONG
    case 13: // IFD
        return 4;
    default:
        return 0;
    }
}

} // namespace

std::optional<TIFFDirectory> TIFFDirectory::first(const ReadAt& readAt) {
    std::array<std::byte, 8> header{};
    if (readAt(0, header) != header.size())
        return std::nullopt;
    const bool bigEndian = header[0] == std::byte{'M'};
    const std::byte order = bigEndian ? std::byte{'M'} : std::byte{'I'};
    const std::span bytes(header);
    if (header[0] != order || header[1] != order || readNumber(bytes.subspan(2, 2), bigEndian) != 42)
        return std::nullopt;
    return at(readAt, bigEndian, readNumber(bytes.subspan(4), bigEndian));
}

std::optional<TIFFDirectory> TIFFDirectory::at(const ReadAt& readAt, bool bigEndian, std::uint32_t offset) {
    TIFFDirectory directory;
    directory.readAt_ = readAt;
    directory.bigEndian_ = bigEndian;
    std::array<std::byte, 2> countBytes{};
    if (readAt(offset, countBytes) != countBytes.size())
        return std::nullopt;
    const std::uint32_t entries = readNumber(countBytes, bigEndian);
    if (entries > mostEntries)
        return std::nullopt;
    Data table(entries * entrySize);
    if (readAt(std::int64_t{offset} + 2, table) != table.size())
        return std::nullopt;

    for (std::size_t start = 0; start < table.size(); start += entrySize) {
        const auto entry = std::span<const std::byte>(table).subspan(start, entrySize);
        const std::size_t size = valueSize(readNumber(entry.subspan(2, 2), bigEndian));
        const std::uint32_t count = readNumber(entry.subspan(4, 4), bigEndian);
        if (size == 0 || count == 0 || count > mostNumbers)
            continue;
        Data values(size * count);
        if (values.size() <= 4)
            std::ranges::copy(entry.subspan(8, values.size()), values.begin());
        else if (readAt(readNumber(entry.subspan(8), bigEndian), values) != values.size())
            continue;
        auto& numbers =
            directory.entries_[static_cast<std::uint16_t>(readNumber(entry.subspan(0, 2), bigEndian))];
        numbers.clear();
        for (std::size_t i = 0; i < values.size(); i += size)
            numbers.push_back(readNumber(std::span(values).subspan(i, size), bigEndian));
    }
    return directory;
}

std::vector<TIFFDirectory> TIFFDirectory::subdirectories() const {
    std::vector<TIFFDirectory> found;
    for (const std::uint32_t offset : numbers(subdirectoriesTag)) {
        if (found.size() == mostSubdirectories)
            break;
        if (auto directory = at(readAt_, bigEndian_, offset))
            found.push_back(std::move(*directory));
    }
    return found;
}

std::span<const std::uint32_t> TIFFDirectory::numbers(std::uint16_t tag) const {
    const auto found = entries_.find(tag);
    return found == entries_.end() ? std::span<const std::uint32_t>() : std::span(found->second);
}

std::optional<std::uint32_t> TIFFDirectory::number(std::uint16_t tag) const {
    const auto values = numbers(tag);
    return values.empty() ? std::nullopt : std::optional(values.front());
}

} // namespace sela
