#pragma once

#include "platform/snapkit/Constraint.h"
#include "platform/uikit/LayoutConstraints.h"

#include <utility>
#include <vector>

namespace sela {

class UIView;

/// The constraints that were made on one view, in order. Immutable; main thread only.
class ViewConstraints : public LayoutConstraints {
public:
    explicit ViewConstraints(std::vector<Constraint> constraints) : constraints_(std::move(constraints)) {}

    /// Those of `view`; null when it has none.
    static const ViewConstraints* of(const UIView& view);

    const std::vector<Constraint>& constraints() const { return constraints_; }

    void layoutSubtree(UIView& root) const override;

private:
    std::vector<Constraint> constraints_;
};

} // namespace sela
