#include "platform/uikit/UIView.h"

#include "platform/foundation/FatalError.h"
#include "platform/uikit/ClassName.h"
#include "platform/uikit/LayoutConstraints.h"
#include "platform/uikit/UITapGestureRecognizer.h"
#include "platform/uikit/UIViewController.h"
#include "platform/uikit/UIWindow.h"
#include "platform/uikit/ViewAnimations.h"

#include <algorithm>
#include <limits>

namespace sela {

UIView::UIView(const CGRect& frame) : bounds_({}, frame.size), center_(frame.center()), layer_(*this) {}

UIView::UIView(std::string_view name) : name_(name), layer_(*this) {}

UIView::UIView(const NSCoder&) : UIView(CGRect()) {}

UIView::~UIView() {
    if (self_)
        *self_ = nullptr;
    endAnimations();
    if (superview_) {
        setNeedsDisplay();
        unlink();
    }
    for (UIView* const view : subviews_)
        view->superview_ = nullptr;
    while (!subviews_.empty()) {
        UIView* const view = subviews_.back();
        subviews_.pop_back();
        view->movedToWindow(nullptr);
    }
}

std::shared_ptr<UIView* const> UIView::self() const {
    if (!self_)
        self_ = std::make_shared<UIView*>(const_cast<UIView*>(this));
    return self_;
}

std::string UIView::className() const {
    return sela::className(typeid(*this));
}

void UIView::addSubview(UIView& view) {
    insertSubview(view, subviews_.size());
}

void UIView::insertSubview(UIView& view, std::size_t index) {
    if (isDescendant(view))
        fatalError("UIView: a view cannot be added to itself or into its own subtree");
    UIWindow* const former = view.window();
    if (view.superview_) {
        view.setNeedsDisplay();
        view.unlink();
    }
    link(view, std::min(index, subviews_.size()));
    view.setNeedsDisplay();
    if (view.window() != former)
        view.movedToWindow(former);
}

void UIView::removeFromSuperview() {
    if (!superview_)
        return;
    UIWindow* const former = window();
    setNeedsDisplay();
    unlink();
    if (former)
        movedToWindow(former);
}

void UIView::link(UIView& view, std::size_t index) {
    subviews_.insert(subviews_.begin() + static_cast<std::ptrdiff_t>(index), &view);
    view.superview_ = this;
    setNeedsLayout();
    if (view.layoutConstraints_ || hasConstrainedSubview())
        solveAgain();
    if (!view.tintColor_)
        view.tintChanged();
}

void UIView::unlink() {
    UIView& superview = *superview_;
    std::erase(superview.subviews_, this);
    superview_ = nullptr;
    superview.setNeedsLayout();
    if (layoutConstraints_ || superview.hasConstrainedSubview())
        superview.solveAgain();
}

void UIView::movedToWindow(UIWindow* former) {
    UIWindow* const current = window();
    if (!current) {
        endAnimations();
        layer_.removeAllAnimations();
    }
    if (former)
        former->viewLeft(*this);
    const ViewReference alive(*this);
    didMoveToWindow();
    if (alive && viewController_)
        viewController_->viewMovedToWindow();
    for (std::size_t index = 0; alive && index < subviews_.size(); ++index)
        subviews_[index]->movedToWindow(former);
}

void UIView::endAnimations() {
    animations_.reset();
}

UIView& UIView::treeRoot() {
    UIView* root = this;
    while (root->superview_)
        root = root->superview_;
    return *root;
}

const UIView& UIView::treeRoot() const {
    return const_cast<UIView*>(this)->treeRoot();
}

UIWindow* UIView::window() {
    return treeRoot().asWindow();
}

const UIWindow* UIView::window() const {
    return const_cast<UIView*>(this)->window();
}

bool UIView::isDescendant(const UIView& view) const {
    const UIView* ancestor = this;
    while (ancestor && ancestor != &view)
        ancestor = ancestor->superview_;
    return ancestor;
}

UIView* UIView::viewNamed(std::string_view name) {
    for (auto view = subviews_.rbegin(); view != subviews_.rend(); ++view)
        if (UIView* const found = (*view)->viewNamed(name))
            return found;
    return name_ == name ? this : nullptr;
}

template<class T>
void UIView::change(PropertyAnimation<T> ViewAnimations::*animation, T& value, const T& newValue) {
    if (value == newValue)
        return;
    setNeedsDisplay();
    if (AnimationGroup* const group = AnimationGroup::current()) {
        if (!animations_)
            animations_ = std::make_unique<ViewAnimations>();
        PropertyAnimation<T>& running = (*animations_).*animation;
        if (!running.isPart(*group))
            running = PropertyAnimation<T>(*group, running.shown(value));
    } else if (animations_) {
        ((*animations_).*animation).stop();
    }
    value = newValue;
    setNeedsDisplay();
}

CGRect UIView::frame() const {
    return transform_.isIdentity() ? layoutFrame() : toSuperview().apply(bounds_);
}

CGRect UIView::layoutFrame() const {
    return {{center_.x - bounds_.size.width / 2, center_.y - bounds_.size.height / 2}, bounds_.size};
}

void UIView::setLayoutFrame(const CGRect& frame) {
    setBounds({bounds_.origin, frame.size});
    setCenter(frame.center());
}

void UIView::setBounds(const CGRect& bounds) {
    const bool resized = bounds.size != bounds_.size;
    change(&ViewAnimations::bounds, bounds_, bounds);
    if (!resized)
        return;
    setNeedsLayout();
    if (!layoutConstraints_ && superview_ && superview_->hasConstrainedSubview())
        superview_->solveAgain();
}

void UIView::setCenter(CGPoint center) {
    if (center == center_)
        return;
    change(&ViewAnimations::center, center_, center);
    if (!layoutConstraints_ && superview_ && superview_->hasConstrainedSubview())
        superview_->solveAgain();
}

void UIView::setTransform(const CGAffineTransform& transform) {
    change(&ViewAnimations::transform, transform_, transform);
}

void UIView::setAlpha(double alpha) {
    change(&ViewAnimations::alpha, alpha_, alpha);
}

void UIView::setBackgroundColor(const std::optional<UIColor>& color) {
    change(&ViewAnimations::backgroundColor, backgroundColor_, color);
}

CGAffineTransform UIView::toSuperview() const {
    return Presentation{bounds_, center_, transform_, 1, {}}.toSuperview();
}

std::optional<CGPoint> UIView::fromRoot(CGPoint point) const {
    if (!superview_)
        return point;
    const std::optional<CGPoint> above = superview_->fromRoot(point);
    const CGAffineTransform up = toSuperview();
    if (!above || !up.isInvertible())
        return std::nullopt;
    return up.inverted().apply(*above);
}

CGPoint UIView::convert(CGPoint point, const UIView& view) const {
    constexpr double faraway = std::numeric_limits<double>::infinity();
    for (const UIView* up = this; up->superview_; up = up->superview_)
        point = up->toSuperview().apply(point);
    return view.fromRoot(point).value_or(CGPoint{faraway, faraway});
}

void UIView::setHidden(bool hidden) {
    if (hidden == hidden_)
        return;
    hidden_ = hidden;
    setNeedsDisplay();
}

UIColor UIView::tintColor() const {
    for (const UIView* view = this; view; view = view->superview_)
        if (view->tintColor_)
            return *view->tintColor_;
    return UIColor::systemBlue();
}

void UIView::setTintColor(const std::optional<UIColor>& color) {
    if (color == tintColor_)
        return;
    tintColor_ = color;
    tintChanged();
}

void UIView::tintChanged() {
    setNeedsDisplay();
    tintColorDidChange();
    for (UIView* const view : subviews_)
        if (!view->tintColor_)
            view->tintChanged();
}

void UIView::setContentMode(ContentMode mode) {
    if (mode == contentMode_)
        return;
    contentMode_ = mode;
    setNeedsDisplay();
}

std::string UIView::accessibilityLabel() const {
    if (!accessibilityLabel_.empty())
        return accessibilityLabel_;
    std::string text;
    for (const UIView* const view : contentViews()) {
        const ViewContent shown = view->content();
        if (const auto* const textShown = std::get_if<TextContent>(&shown))
            text += textShown->text.string();
    }
    return text;
}

CGSize UIView::sizeThatFits(CGSize) const {
    return bounds_.size;
}

UITapGestureRecognizer& UIView::addGestureRecognizer(std::unique_ptr<UITapGestureRecognizer> recognizer) {
    recognizer->view_ = this;
    gestureRecognizers_.push_back(std::move(recognizer));
    return *gestureRecognizers_.back();
}

UIView* UIView::hitTest(CGPoint point) {
    if (hidden_ || alpha_ < 0.01 || !userInteractionEnabled_ || !pointInside(point))
        return nullptr;
    for (auto view = subviews_.rbegin(); view != subviews_.rend(); ++view) {
        const CGAffineTransform up = (*view)->toSuperview();
        if (!up.isInvertible())
            continue;
        if (UIView* const hit = (*view)->hitTest(up.inverted().apply(point)))
            return hit;
    }
    return this;
}

void UIView::touchesBegan(const UITouch& touch) {
    if (superview_)
        superview_->touchesBegan(touch);
}

void UIView::touchesMoved(const UITouch& touch) {
    if (superview_)
        superview_->touchesMoved(touch);
}

void UIView::touchesEnded(const UITouch& touch) {
    if (superview_)
        superview_->touchesEnded(touch);
}

void UIView::touchesCancelled(const UITouch& touch) {
    if (superview_)
        superview_->touchesCancelled(touch);
}

} // namespace sela
