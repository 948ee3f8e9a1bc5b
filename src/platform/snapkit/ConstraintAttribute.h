#pragma once

#include <vector>

namespace sela {

class UIView;

/// The part of a view's rectangle that a constraint relates. Leading is where reading begins: left, or right
/// in a right-to-left view; trailing is the other edge.
enum class ConstraintAttribute {
    left,
    right,
    leading,
    trailing,
    top,
    bottom,
    width,
    height,
    centerX,
    centerY
};

/// Attributes in the order in which they were named.
using ConstraintAttributes = std::vector<ConstraintAttribute>;

/// Whether the attribute is a width or a height, and not a place.
constexpr bool isSize(ConstraintAttribute attribute) {
    return attribute == ConstraintAttribute::width || attribute == ConstraintAttribute::height;
}

/// Whether the attribute is an edge that the reading direction decides.
constexpr bool followsReading(ConstraintAttribute attribute) {
    return attribute == ConstraintAttribute::leading || attribute == ConstraintAttribute::trailing;
}

/// Whether the attribute is left or right, whatever the reading direction.
constexpr bool ignoresReading(ConstraintAttribute attribute) {
    return attribute == ConstraintAttribute::left || attribute == ConstraintAttribute::right;
}

/// Whether the attribute lies on the horizontal axis.
constexpr bool isHorizontal(ConstraintAttribute attribute) {
    return followsReading(attribute) || ignoresReading(attribute) ||
           attribute == ConstraintAttribute::width || attribute == ConstraintAttribute::centerX;
}

/// The attribute's name, for log lines.
const char* nameOf(ConstraintAttribute attribute);

/// Attributes of a view as the right side of a constraint: what `view.snp().right()` gives. Valid as long as
/// the view lives.
struct ConstraintItem {
    const UIView& view;
    ConstraintAttributes attributes;
};

} // namespace sela
