#pragma once

#include "platform/snapkit/ConstraintMakerExtendable.h"

#include <deque>
#include <utility>
#include <vector>

namespace sela {

/// The object on which the body of `makeConstraints` builds its chains; each chain starts with an attribute:
///
///     make.left().equalTo(icon.snp().right()).offset(8);
///     make.top().bottom().equalToSuperview().inset(4);
///     make.width().equalTo(120).priority(ConstraintPriority::low);
class ConstraintMaker : public ConstraintAttributeWords<ConstraintMaker> {
public:
    explicit ConstraintMaker(const UIView& view) : view_(view) {}
    ConstraintMaker(const ConstraintMaker&) = delete;
    ConstraintMaker& operator=(const ConstraintMaker&) = delete;

    /// Appends the constraints of all chains, in order. A chain without a relation stops the process with its
    /// place.
    void resolve(std::vector<Constraint>& constraints) const {
        for (const ConstraintDescription& description : descriptions_)
            description.resolve(constraints);
    }

private:
    friend class ConstraintAttributeWords<ConstraintMaker>;

    ConstraintMakerExtendable name(ConstraintAttributes attributes, SourceLocation place) {
        return ConstraintMakerExtendable(descriptions_.emplace_back(view_, std::move(attributes), place));
    }

    const UIView& view_;
    std::deque<ConstraintDescription> descriptions_;
};

} // namespace sela
