#include "platform/uikit/UIWindow.h"

#include "platform/uikit/UIScreen.h"
#include "platform/uikit/UITapGestureRecognizer.h"

#include <algorithm>
#include <utility>

namespace sela {

namespace {

bool anyView(const UIView& view, const std::function<bool(const UIView&)>& condition) {
    return condition(view) || std::ranges::any_of(view.subviews(), [&](const UIView* subview) {
               return anyView(*subview, condition);
           });
}

} // namespace

UIWindow::UIWindow(CGSize size) : UIView({{}, size}) {
    UIScreen::main().setSize(size);
}

UIWindow::~UIWindow() {
    touch_.reset();
    setRootViewController(nullptr);
    while (!subviews().empty())
        subviews().back()->removeFromSuperview();
}

void UIWindow::setSize(CGSize size) {
    setFrame({{}, size});
    invalidate(bounds());
}

void UIWindow::setRootViewController(std::shared_ptr<UIViewController> controller) {
    if (rootViewController_) {
        if (rootViewController_->presentedViewController())
            rootViewController_->presentedViewController()->view().removeFromSuperview();
        rootViewController_->view().removeFromSuperview();
    }
    rootViewController_ = std::move(controller);
    if (rootViewController_) {
        rootViewController_->view().setFrame(bounds());
        insertSubview(rootViewController_->view(), 0);
    }
}

void UIWindow::setTraitCollection(const UITraitCollection& traits) {
    if (traits == traitCollection_)
        return;
    traitCollection_ = traits;
    invalidate(bounds());
}

void UIWindow::layoutSubviews() {
    for (UIView* const screen : subviews())
        if (screen->viewController())
            screen->setLayoutFrame(bounds());
}

void UIWindow::prepareFrame() {
    prepareSubtree(*this);
    layoutIfNeeded();
}

void UIWindow::prepareSubtree(UIView& view) {
    view.prepareForDisplay();
    for (std::size_t index = 0; index < view.subviews().size(); ++index)
        prepareSubtree(*view.subviews()[index]);
}

CGRect UIWindow::takeDirtyRect() {
    const CGRect changed = takeChangedRect().unionWith(std::exchange(dirtyRect_, {}));
    frameRequested_ = false;
    return changed.intersection(bounds());
}

bool UIWindow::needsFrame() const {
    return frameRequested_ || isMoving(*this);
}

bool UIWindow::isMoving(const UIView& view) {
    return !view.isHidden() &&
           (view.isAnimating() || view.animations_ ||
            std::ranges::any_of(view.subviews(), [](const UIView* subview) { return isMoving(*subview); }));
}

bool UIWindow::isIdle() const {
    return !touch_ &&
           !anyView(*this, [](const UIView& view) { return view.isAnimating() && !view.animatesForever(); });
}

void UIWindow::invalidate(const CGRect& rect) {
    dirtyRect_ = dirtyRect_.unionWith(rect);
    requestFrame();
}

void UIWindow::requestFrame() {
    if (!std::exchange(frameRequested_, true) && needsFrameHandler_)
        needsFrameHandler_();
}

} // namespace sela
