#pragma once

#include "platform/foundation/SourceLocation.h"
#include "platform/snapkit/ConstraintAttribute.h"
#include "platform/uikit/ViewReference.h"

#include <cstdint>
#include <optional>

namespace sela {

/// How important a constraint is, above 0 and up to 1000; the platform's named steps. The more important one
/// of two that contradict each other is kept, of equally important ones the one made first.
namespace ConstraintPriority {

inline constexpr double required = 1000;
inline constexpr double high = 750;
inline constexpr double medium = 500;
inline constexpr double low = 250;

} // namespace ConstraintPriority

/// One equation of a view's layout: its `attribute` = `multiplier` * the target's `targetAttribute` +
/// `constant`, in points. Without a target, `attribute` = `constant`. For leading and trailing edges this
/// follows the reading direction: a positive constant moves on in it. A multiplied place is measured from the
/// left (leading) or top edge of the nearest view that contains both views. A constraint is inactive while
/// its target is not in the tree of its view, or is destroyed.
struct Constraint {
    ConstraintAttribute attribute;
    std::optional<ViewReference<const UIView>> target; ///< absent: none
    ConstraintAttribute targetAttribute;
    double multiplier;
    double constant;
    double priority;
    std::uint64_t number; ///< constraints are numbered in the order in which they are made
    SourceLocation place; ///< where it was made
};

} // namespace sela
