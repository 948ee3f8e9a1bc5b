#pragma once

#include "platform/snapkit/ConstraintMakerExtendable.h"

#include <deque>
#include <utility>
#include <vector>

namespace sela {

/// What the body of `makeConstraints` says its chains to; each chain starts with an attribute:
///
///     make.left().equalTo(icon.snp().right()).offset(8);
///     make.top().bottom().equalToSuperview().inset(4);
///     make.width().equalTo(120).priority(ConstraintPriority::low);
class ConstraintMaker : public ConstraintAttributeWords<ConstraintMaker> {
public:
    explicit ConstraintMaker(const UIView& view) : view_(view) {}
    ConstraintMaker(const ConstraintMaker&) = delete;
    ConstraintMaker& operator=(const ConstraintMaker&) = delete;

    /// Appends what was said, in order. A chain that lacks its relation stops the process with its place.
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
