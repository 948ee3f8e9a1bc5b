#pragma once

#include <compare>

namespace sela {

/// A row of a table: its section and its place in it, both from 0.
struct IndexPath {
    int row = 0;
    int section = 0;

    bool operator==(const IndexPath&) const = default;
    auto operator<=>(const IndexPath& other) const {
        if (const auto order = section <=> other.section; std::is_neq(order))
            return order;
        return row <=> other.row;
    }
};

} // namespace sela
