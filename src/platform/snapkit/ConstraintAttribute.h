#pragma once

#include <vector>

namespace sela {

/// What of a view's rectangle a constraint speaks about. Text runs from left to right everywhere in this
/// system, so leading is left and trailing is right.
enum class ConstraintAttribute { left, right, top, bottom, width, height, centerX, centerY };

/// Attributes in the order in which they were named.
using ConstraintAttributes = std::vector<ConstraintAttribute>;

/// Whether the attribute is a width or a height, and not a place.
constexpr bool isSize(ConstraintAttribute attribute) {
    return attribute == ConstraintAttribute::width || attribute == ConstraintAttribute::height;
}

/// Whether the attribute lies on the horizontal axis.
constexpr bool isHorizontal(ConstraintAttribute attribute) {
    return attribute == ConstraintAttribute::left || attribute == ConstraintAttribute::right ||
           attribute == ConstraintAttribute::width || attribute == ConstraintAttribute::centerX;
}

/// The attribute's name, for log lines.
const char* describe(ConstraintAttribute attribute);

} // namespace sela
