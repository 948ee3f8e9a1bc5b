#pragma once

#include "platform/snapkit/ConstraintDescription.h"

namespace sela {

/// The stage of a chain that has its relation: what may still follow are changes to the right side, which add
/// up, and last the priority.
class ConstraintMakerEditable {
public:
    explicit ConstraintMakerEditable(ConstraintDescription& description) : description_(description) {}

    /// Multiplies the target's attribute by `factor`.
    ConstraintMakerEditable multipliedBy(double factor) {
        description_.multiply(factor);
        return *this;
    }

    /// Moves places right or down (leading and trailing edges on in the reading direction), and enlarges
    /// sizes, by `amount` points.
    ConstraintMakerEditable offset(double amount) {
        description_.addOffset(amount);
        return *this;
    }

    /// Moves edges inwards by `amount` points: left, leading and top edges by +amount, the others by -amount;
    /// sizes shrink by both sides.
    ConstraintMakerEditable inset(double amount) { return inset({amount, amount, amount, amount}); }

    /// Moves edges inwards by the side's inset; sizes shrink by both sides, centres move by half the
    /// difference.
    ConstraintMakerEditable inset(const UIEdgeInsets& insets) {
        description_.addInsets(insets);
        return *this;
    }

    /// See `ConstraintPriority`; `required` unless said otherwise. Ends the chain.
    void priority(double priority) { description_.setPriority(priority); }

private:
    ConstraintDescription& description_;
};

} // namespace sela
