#pragma once

#include "platform/snapkit/ConstraintAttributeWords.h"
#include "platform/snapkit/ConstraintMaker.h"
#include "platform/uikit/UIView.h"

#include <concepts>
#include <utility>
#include <vector>

namespace sela {

/// The entry of the constraint language, `view.snp()`:
///
///     title.snp().makeConstraints([&](ConstraintMaker& make) {
///         make.left().equalTo(icon.snp().right()).offset(24);
///         make.right().centerY().height().equalToSuperview();
///     });
///
/// A view with constraints gets its frame from them in the layout pass, its subviews after it. All
/// constraints under a layout root are solved together, exactly: the more important ones first, and of
/// equally important ones those that were made first. One that contradicts those before it is dropped, which
/// is logged once for each line of source that made one. What they leave open gets the natural width and
/// height of the view (`intrinsicContentSize`; a label that is narrower than its text grows in height), and
/// what is still open then is 0: widths, heights, and the distance from the superview's left or top edge. A
/// size may come out negative.
///
/// All views under a layout root act on each other. A view under another root, or one without constraints,
/// can be a target but is not moved, so its frame must be determined elsewhere.
///
/// A layout costs time in proportion to what is under the root that changed (`LinearSystem` says when it
/// costs more), not to the size of the tree: a table costs per visible cell.
///
/// A constraint is kept when a view leaves the tree, but is inactive while the views it relates are not in
/// one tree; those of a destroyed view are dropped. Misuse (a chain without a relation, a size related to a
/// place, a missing superview) stops the process with the line of source. Main thread only.
class ConstraintViewDSL : public ConstraintAttributeWords<ConstraintViewDSL> {
public:
    explicit ConstraintViewDSL(UIView& view) : view_(view) {}

    /// Adds the constraints that `body` says, all or (when it stops the process) none, and asks for layout.
    template<std::invocable<ConstraintMaker&> Body>
    void makeConstraints(Body&& body) {
        ConstraintMaker maker(view_);
        std::forward<Body>(body)(maker);
        add(maker);
    }

    /// As `makeConstraints`, but replaces all constraints made on this view before.
    template<std::invocable<ConstraintMaker&> Body>
    void remakeConstraints(Body&& body) {
        removeConstraints();
        makeConstraints(std::forward<Body>(body));
    }

    /// Drops all constraints made on this view; it keeps the frame it has.
    void removeConstraints();

private:
    friend class ConstraintAttributeWords<ConstraintViewDSL>;

    ConstraintItem name(ConstraintAttributes attributes, SourceLocation) {
        return {view_, std::move(attributes)};
    }

    void add(const ConstraintMaker& maker);

    UIView& view_;
};

} // namespace sela
