#pragma once

#include "platform/foundation/SourceLocation.h"
#include "platform/snapkit/Constraint.h"
#include "platform/uikit/Geometry.h"

#include <optional>
#include <vector>

namespace sela {

/// A chain of the constraint language while it is being built: the stages fill it in, and `resolve` turns it
/// into constraints. A mistake stops the process with the place where the chain starts.
class ConstraintDescription {
public:
    ConstraintDescription(const UIView& view, ConstraintAttributes attributes, SourceLocation place);

    void addAttributes(const ConstraintAttributes& attributes);

    /// Relates to attributes of `item`: one for all of this chain's, or as many as it has.
    void relateTo(const ConstraintItem& item);

    /// Relates to the same attributes of `view`.
    void relateTo(const UIView& view);

    /// Relates to the same attributes of the superview, which must exist.
    void relateToSuperview();

    /// Sizes become `value`; places lie `value` beyond the superview's.
    void relateTo(double value);

    /// The attributes, which may only be sizes, become those of `size`.
    void relateTo(CGSize size);

    void multiply(double factor) { multiplier_ *= factor; }
    void addOffset(double amount) { offset_ += amount; }
    void addInsets(const UIEdgeInsets& insets);
    void setPriority(double priority);

    /// Appends one constraint per attribute. A chain without a relation, and one that relates a size to a
    /// place or a place to one of the other axis, is a mistake.
    void resolve(std::vector<Constraint>& constraints) const;

private:
    ConstraintAttribute targetAttribute(std::size_t index) const;
    double constant(ConstraintAttribute attribute) const;

    const UIView& view_;
    ConstraintAttributes attributes_;
    SourceLocation place_;
    bool related_ = false;
    const UIView* target_ = nullptr;
    std::optional<ConstraintAttributes> targetAttributes_; ///< absent: the same attributes
    bool sizesAreConstant_ = false;
    double multiplier_ = 1;
    double offset_ = 0;
    CGSize size_;
    UIEdgeInsets insets_;
    double priority_ = ConstraintPriority::required;
};

} // namespace sela
