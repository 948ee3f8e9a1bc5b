#pragma once

#include "platform/snapkit/ConstraintAttribute.h"

namespace sela {

class UIView;

/// Attributes of a view as the right side of a constraint: what `view.snp().right()` gives. Valid as long as
/// the view lives.
struct ConstraintItem {
    const UIView& view;
    ConstraintAttributes attributes;
};

} // namespace sela
