#include "platform/snapkit/ConstraintViewDSL.h"

#include "platform/snapkit/ViewConstraints.h"

#include <memory>

namespace sela {

ConstraintViewDSL UIView::snp() {
    return ConstraintViewDSL(*this);
}

void ConstraintViewDSL::removeConstraints() {
    view_.setLayoutConstraints(nullptr);
}

void ConstraintViewDSL::add(const ConstraintMaker& maker) {
    std::vector<Constraint> constraints;
    if (const ViewConstraints* existing = ViewConstraints::of(view_))
        constraints = existing->constraints();
    maker.resolve(constraints);
    view_.setLayoutConstraints(std::make_unique<ViewConstraints>(std::move(constraints)));
}

} // namespace sela
