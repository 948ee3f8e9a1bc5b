#pragma once

namespace sela {

class UIView;

/// The constraints that give one view its frame, owned by that view (`UIView::setLayoutConstraints`) and
/// destroyed with it. The view kit knows only this interface; the constraint language implements it. Main
/// thread only.
///
/// A view that holds constraints is a constrained view; any other keeps the frame it was given. An
/// unconstrained view with a constrained subview is a layout root: its bounds are known, and the constrained
/// views under it (its constrained subviews, their constrained subviews, and so on, not beyond an
/// unconstrained view) are solved together. The layout pass runs from the window downwards, so a root's own
/// frame is final before its subtree is solved.
class LayoutConstraints {
public:
    virtual ~LayoutConstraints() = default;

    /// Solves the subtree of the layout root `root` and gives each constrained view in it its frame with
    /// `UIView::setLayoutFrame`. Called on one of those views' constraints, whichever comes first, for all of
    /// them: once per layout pass and root, and only after something that can change the result (the root's
    /// size, a constraint, an intrinsic size, the set of views).
    virtual void layoutSubtree(UIView& root) const = 0;
};

} // namespace sela
