#include "platform/uikit/LayoutConstraints.h"
#include "platform/uikit/UITapGestureRecognizer.h"
#include "platform/uikit/UIView.h"
#include "platform/uikit/UIWindow.h"
#include "platform/uikit/ViewAnimations.h"

namespace sela {

namespace {

/// How many times its radius a blurred shadow reaches outwards visibly.
constexpr double shadowReach = 3;

} // namespace

CGAffineTransform UIView::Presentation::toSuperview() const {
    const CGPoint middle = bounds.center();
    return CGAffineTransform::translation(-middle.x, -middle.y)
        .concatenating(transform)
        .concatenating(CGAffineTransform::translation(center.x, center.y));
}

UIView::Presentation UIView::presentation() const {
    Presentation shown{bounds_, center_, transform_, alpha_, backgroundColor_};
    if (animations_) {
        shown.bounds = animations_->bounds.shown(bounds_);
        shown.center = animations_->center.shown(center_);
        shown.transform = animations_->transform.shown(transform_);
        shown.alpha = animations_->alpha.shown(alpha_);
        shown.backgroundColor = animations_->backgroundColor.shown(backgroundColor_);
    }
    if (layer_.hasAnimations())
        shown.transform =
            CGAffineTransform::translation(layer_.animatedTranslationX(), 0).concatenating(shown.transform);
    return shown;
}

CGAffineTransform UIView::presentationToRoot() const {
    CGAffineTransform map;
    for (const UIView* view = this; view->superview_; view = view->superview_)
        map = map.concatenating(view->presentation().toSuperview());
    return map;
}

bool UIView::isAnimating() const {
    return layer_.hasAnimations() || (animations_ && animations_->isRunning());
}

void UIView::setNeedsDisplay() {
    if (UIWindow* const shownIn = window())
        shownIn->invalidate(animations_ ? displayRectInWindow().unionWith(animations_->lastShown)
                                        : displayRectInWindow());
}

CGRect UIView::displayExtent() const {
    CGRect extent = presentation().bounds;
    if (layer_.masksToBounds())
        return extent;
    for (const UIView* const view : subviews_)
        if (!view->hidden_)
            extent = extent.unionWith(view->presentation().toSuperview().apply(view->displayExtent()));
    if (layer_.shadowOpacity() > 0) {
        const double reach = shadowReach * layer_.shadowRadius();
        const CGSize offset = layer_.shadowOffset();
        extent = extent.unionWith(extent.insetBy(-reach, -reach).offsetBy(offset.width, offset.height));
    }
    return extent;
}

CGRect UIView::displayRectInWindow() const {
    CGRect rect = displayExtent();
    for (const UIView* view = this; view->superview_; view = view->superview_) {
        rect = view->presentation().toSuperview().apply(rect);
        if (view->superview_->clipsToBounds())
            rect = rect.intersection(view->superview_->presentation().bounds);
    }
    return rect;
}

CGRect UIView::takeChangedRect() {
    CGRect changed;
    if (animations_ || isAnimating()) {
        if (!animations_)
            animations_ = std::make_unique<ViewAnimations>();
        const CGRect shown = displayRectInWindow();
        changed = shown.unionWith(animations_->lastShown);
        animations_->lastShown = shown;
        if (!isAnimating())
            animations_.reset();
    }
    for (UIView* const view : subviews_)
        if (!view->hidden_)
            changed = changed.unionWith(view->takeChangedRect());
    return changed;
}

} // namespace sela
