#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace sela {

/// A block of bytes, owned. Values may be copied and read from any thread.
using Data = std::vector<std::byte>;

/// Bytes owned by someone else.
using DataView = std::span<const std::byte>;

inline DataView asData(std::string_view text) {
    return std::as_bytes(std::span(text.data(), text.size()));
}

inline Data toData(std::string_view text) {
    const DataView view = asData(text);
    return Data(view.begin(), view.end());
}

inline std::string_view asText(DataView bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

} // namespace sela
