#include "platform/foundation/StringTable.h"

#include <cstdint>

namespace sela {

namespace {

// The header of a .mo file (GNU gettext manual, "The Format of GNU MO Files"): five numbers of 32 bits, the
// last three of which are how many texts there are and where the lists of keys and of texts begin. An element
// of a list is a length and a place.
constexpr std::uint32_t magicNumber = 0x950412de;
constexpr std::size_t revisionField = 4;
constexpr std::size_t countField = 8;
constexpr std::size_t keysField = 12;
constexpr std::size_t textsField = 16;
constexpr std::size_t elementSize = 8;

/// The number of 32 bits at an offset; absent where the file is too short.
std::optional<std::uint32_t> number(DataView file, std::size_t offset) {
    if (offset > file.size() || file.size() - offset < 4)
        return std::nullopt;
    std::uint32_t value = 0;
    for (std::size_t i = 4; i > 0; --i)
        value = value << 8 | std::to_integer<std::uint32_t>(file[offset + i - 1]);
    return value;
}

/// The text of a list element; absent when the text or the element is outside of the file.
std::optional<std::string_view> string(DataView file, std::size_t element) {
    const auto length = number(file, element);
    const auto offset = number(file, element + 4);
    if (!length || !offset || *offset > file.size() || file.size() - *offset < *length)
        return std::nullopt;
    return asText(file.subspan(*offset, *length));
}

} // namespace

Result<StringTable> StringTable::parse(DataView file, std::string_view name) {
    const auto damaged = [&](const char* how) -> ErrorRef {
        return std::make_shared<NSError>(NSCocoaErrorDomain, NSCoderReadCorruptError,
                                         std::string(name) + how);
    };
    // The major revision is in the upper half; the minor one adds texts that depend on the system, which our
    // tables have none of.
    if (number(file, 0) != magicNumber || number(file, revisionField).value_or(~0u) >> 16 > 1)
        return damaged(" is not a string table.");
    const auto count = number(file, countField);
    const auto keys = number(file, keysField);
    const auto texts = number(file, textsField);
    StringTable table;
    for (std::size_t i = 0; i < count.value_or(1); ++i) {
        const auto key = keys ? string(file, *keys + i * elementSize) : std::nullopt;
        const auto text = texts ? string(file, *texts + i * elementSize) : std::nullopt;
        if (!key || !text)
            return damaged(" is a string table that is cut short.");
        table.texts_.emplace(*key, *text);
    }
    return table;
}

std::optional<std::string_view> StringTable::text(std::string_view key) const {
    const auto found = texts_.find(key);
    return found == texts_.end() ? std::nullopt : std::optional<std::string_view>(found->second);
}

} // namespace sela
