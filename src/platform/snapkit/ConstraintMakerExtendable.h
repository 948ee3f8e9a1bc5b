#pragma once

#include "platform/snapkit/ConstraintAttributeWords.h"
#include "platform/snapkit/ConstraintMakerEditable.h"

namespace sela {

/// The stage of a chain that has attributes: more attributes or the relation must follow.
class [[nodiscard]] ConstraintMakerExtendable : public ConstraintAttributeWords<ConstraintMakerExtendable> {
public:
    explicit ConstraintMakerExtendable(ConstraintDescription& description) : description_(description) {}

    /// Equal to the same attributes of another view of the same tree.
    ConstraintMakerEditable equalTo(const UIView& view) { return relateTo(view); }

    /// Equal to an attribute of another view, `other.snp().right()`, or to a composite of as many attributes.
    ConstraintMakerEditable equalTo(const ConstraintItem& item) { return relateTo(item); }

    /// Sizes equal to `value` points; places `value` points right of or below the superview's.
    ConstraintMakerEditable equalTo(double value) { return relateTo(value); }

    /// Width and height equal to those of `size`.
    ConstraintMakerEditable equalTo(CGSize size) { return relateTo(size); }

    /// Equal to the same attributes of the superview, which must exist.
    ConstraintMakerEditable equalToSuperview() {
        description_.relateToSuperview();
        return ConstraintMakerEditable(description_);
    }

private:
    friend class ConstraintAttributeWords<ConstraintMakerExtendable>;

    ConstraintMakerExtendable name(const ConstraintAttributes& attributes, SourceLocation) {
        description_.addAttributes(attributes);
        return *this;
    }

    ConstraintMakerEditable relateTo(const auto& target) {
        description_.relateTo(target);
        return ConstraintMakerEditable(description_);
    }

    ConstraintDescription& description_;
};

} // namespace sela
