#include "platform/foundation/FatalError.h"
#include "platform/uikit/LayoutConstraints.h"
#include "platform/uikit/UIApplication.h"
#include "platform/uikit/UIView.h"
#include "platform/uikit/UIViewController.h"
#include "platform/uikit/UIWindow.h"
#include "platform/uikit/ViewAnimations.h"

#include <algorithm>

namespace sela {

namespace {

/// Limit for layout that keeps asking for more layout; after this many passes the rest waits for the next
/// frame.
constexpr int maximumPasses = 16;

} // namespace

UIUserInterfaceLayoutDirection UIView::effectiveUserInterfaceLayoutDirection() const {
    return UIApplication::shared().userInterfaceLayoutDirection();
}

void UIView::setLayoutConstraints(std::unique_ptr<LayoutConstraints> constraints) {
    // The former constraints are destroyed last: until then the view counts as constrained and finds its
    // layout root.
    solveAgain();
    std::swap(layoutConstraints_, constraints);
    solveAgain();
}

void UIView::constraintsChanged() {
    if (layoutConstraints_ || (superview_ && superview_->hasConstrainedSubview()))
        solveAgain();
}

void UIView::solveAgain() {
    UIView* root = this;
    while (root->layoutConstraints_ && root->superview_)
        root = root->superview_;
    root->setNeedsLayout();
}

bool UIView::hasConstrainedSubview() const {
    return std::ranges::any_of(subviews_,
                               [](const UIView* view) { return view->layoutConstraints_ != nullptr; });
}

void UIView::setNeedsLayout() {
    needsLayout_ = true;
    UIView* view = this;
    while (view && !view->subtreeNeedsLayout_) {
        view->subtreeNeedsLayout_ = true;
        if (UIWindow* const reached = view->superview_ ? nullptr : view->asWindow())
            reached->requestFrame();
        view = view->superview_;
    }
}

void UIView::layoutIfNeeded() {
    UIView& root = treeRoot();
    for (int pass = 0; pass < maximumPasses && root.subtreeNeedsLayout_; ++pass)
        root.layoutTree();
}

void UIView::layoutTree() {
    subtreeNeedsLayout_ = false;
    if (needsLayout_) {
        needsLayout_ = false;
        if (!layoutConstraints_) {
            const auto constrained = std::ranges::find_if(
                subviews_, [](const UIView* view) { return view->layoutConstraints_ != nullptr; });
            if (constrained != subviews_.end())
                (*constrained)->layoutConstraints_->layoutSubtree(*this);
        }
        layoutSubviews();
        if (viewController_)
            viewController_->viewDidLayoutSubviews();
    }
    for (std::size_t index = 0; index < subviews_.size(); ++index)
        if (subviews_[index]->subtreeNeedsLayout_)
            subviews_[index]->layoutTree();
}

} // namespace sela
