#pragma once

#include "platform/snapkit/Constraint.h"
#include "platform/snapkit/LinearSystem.h"
#include "platform/uikit/Geometry.h"

#include <unordered_map>
#include <vector>

namespace sela {

class UIView;

/// One layout of what is under a layout root: the constraints of all its constrained views as one system of
/// equations in the root's coordinates. Every constrained view has four unknowns; an unconstrained one lies
/// in its superview where its frame says. The root, the views above it and what other roots above it have
/// laid out are known. The views under any other layout root that is referred to are solved as well, but not
/// moved. Main thread only.
class SubtreeLayout {
public:
    explicit SubtreeLayout(UIView& root);

    /// Solves, logs what had to be dropped, and gives every constrained view its frame.
    void apply();

private:
    /// A view's extent along one axis, from the root's left or top edge.
    struct Span {
        LinearExpression start;
        LinearExpression length;
    };

    struct Box {
        Span horizontal;
        Span vertical;
    };

    /// A view whose frame is unknown.
    struct Member {
        UIView* view;
        Variable left;
        Variable top;
        Variable width;
        Variable height;
    };

    struct Equation {
        const UIView* view;
        const UIView* target; ///< null: none
        const Constraint* constraint;
    };

    void addKnownViews();
    void addMembers(const UIView& superview);
    const Box* box(const UIView& view);
    bool isLaidOutBefore(const UIView& view) const;
    void collectEquations();
    LinearExpression expression(const Equation& equation);
    LinearExpression attribute(const UIView& view, ConstraintAttribute attribute, bool fromRight);
    void addEquations();
    void addNaturalSizes();
    void addZeros();
    double value(const LinearExpression& expression) const;
    CGRect frame(const Member& member) const;

    UIView& root_;
    std::unordered_map<const UIView*, Box> boxes_;
    std::vector<Member> members_; ///< superviews before subviews
    std::size_t moved_ = 0;       ///< how many of the members are under the root: the first ones
    std::vector<Equation> equations_;
    LinearSystem system_;
};

} // namespace sela
