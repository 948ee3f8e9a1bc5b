#pragma once

#include "platform/foundation/Data.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <vector>

namespace sela {

/// Fills a buffer from an offset, and returns how many bytes there were.
using ReadAt = std::function<std::size_t(std::int64_t offset, std::span<std::byte> buffer)>;

/// The directories of a TIFF file (TIFF 6.0), as EXIF and DNG use it too: numbers by their tags.
class TIFFDirectory {
public:
    /// The first directory of a file; absent when it is no TIFF file or the directory is truncated.
    static std::optional<TIFFDirectory> first(const ReadAt& readAt);

    /// The directories that entry 330 of this one points to, at most eight.
    std::vector<TIFFDirectory> subdirectories() const;

    /// The integers under a tag, negative ones wrapped to large ones; empty when there are none.
    std::span<const std::uint32_t> numbers(std::uint16_t tag) const;

    /// The first number under a tag.
    std::optional<std::uint32_t> number(std::uint16_t tag) const;

private:
    static std::optional<TIFFDirectory> at(const ReadAt& readAt, bool bigEndian, std::uint32_t offset);

    ReadAt readAt_;
    bool bigEndian_ = false;
    std::map<std::uint16_t, std::vector<std::uint32_t>> entries_;
};

} // namespace sela
