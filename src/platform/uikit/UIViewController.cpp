#include "platform/uikit/UIViewController.h"

#include "platform/foundation/DispatchQueue.h"
#include "platform/uikit/ClassName.h"
#include "platform/uikit/UINavigationController.h"
#include "platform/uikit/UIScreen.h"
#include "platform/uikit/UIWindow.h"

#include <utility>

namespace sela {

UIViewController::UIViewController(const std::optional<std::string>&) {}

UIViewController::UIViewController(const NSCoder&) {}

UIViewController::~UIViewController() {
    for (const std::shared_ptr<UIViewController>& child : children_)
        child->parent_ = nullptr;
    if (presented_) {
        presented_->presenting_ = nullptr;
        presented_->view().removeFromSuperview();
    }
    if (view_)
        view_->viewController_ = nullptr;
}

std::string UIViewController::className() const {
    return sela::className(typeid(*this));
}

UIView& UIViewController::view() {
    if (!view_) {
        loadView();
        viewDidLoad();
    }
    return *view_;
}

void UIViewController::loadView() {
    setView(std::make_unique<UIView>(UIScreen::main().bounds()));
}

void UIViewController::setView(std::unique_ptr<UIView> view) {
    view_ = std::move(view);
    view_->viewController_ = this;
}

void UIViewController::addChild(std::shared_ptr<UIViewController> child) {
    child->removeFromParent();
    child->willMove(this);
    child->parent_ = this;
    children_.push_back(std::move(child));
}

void UIViewController::removeFromParent() {
    if (!parent_)
        return;
    const std::shared_ptr<UIViewController> self = shared_from_this();
    std::erase(std::exchange(parent_, nullptr)->children_, self);
    didMove(nullptr);
}

std::shared_ptr<NSExtensionContext> UIViewController::extensionContext() const {
    const UIViewController* controller = this;
    while (!controller->extensionContext_ && controller->parent_)
        controller = controller->parent_;
    return controller->extensionContext_;
}

UINavigationController* UIViewController::navigationController() const {
    for (UIViewController* ancestor = parent_; ancestor; ancestor = ancestor->parent_)
        if (auto* const navigationController = dynamic_cast<UINavigationController*>(ancestor))
            return navigationController;
    return nullptr;
}

UIViewController& UIViewController::containmentRoot() {
    UIViewController* root = this;
    while (root->parent_)
        root = root->parent_;
    return *root;
}

void UIViewController::present(std::shared_ptr<UIViewController> controller, bool animated,
                               Completion completion) {
    UIViewController& presenter = containmentRoot();
    UIWindow* const window = presenter.view().window();
    if (!window || presenter.presented_)
        return;
    presenter.presented_ = controller;
    controller->presenting_ = &presenter;
    UIView& view = controller->view();
    view.setFrame(window->bounds());
    presenter.beginAppearanceTransition(false, animated);
    controller->beginAppearanceTransition(true, animated);
    window->addSubview(view);
    if (animated)
        view.setTransform(CGAffineTransform::translation(0, window->bounds().size.height));
    UIView::animate(
        animated ? presentationDuration : 0, [&] { view.setTransform({}); },
        [covered = presenter.weak_from_this(), shown = std::move(controller),
         completion = std::move(completion)](bool) {
            if (const std::shared_ptr<UIViewController> alive = covered.lock())
                alive->endAppearanceTransition();
            shown->endAppearanceTransition();
            if (completion)
                completion();
        });
}

void UIViewController::dismiss(bool animated, Completion completion) {
    UIViewController& root = containmentRoot();
    if (root.presented_)
        root.dismissPresented(animated, std::move(completion));
    else if (root.presenting_)
        root.presenting_->dismissPresented(animated, std::move(completion));
    else if (completion)
        DispatchQueue::main().async(std::move(completion));
}

void UIViewController::dismissPresented(bool animated, Completion completion) {
    const std::shared_ptr<UIViewController> gone = std::exchange(presented_, nullptr);
    if (gone->presented_)
        gone->dismissPresented(false, {});
    gone->presenting_ = nullptr;
    gone->beginAppearanceTransition(false, animated);
    beginAppearanceTransition(true, animated);
    UIView& view = gone->view();
    view.setUserInteractionEnabled(false);
    UIView::animate(
        animated ? presentationDuration : 0,
        [&] { view.setTransform(CGAffineTransform::translation(0, view.bounds().size.height)); },
        [uncovered = weak_from_this(), gone, completion = std::move(completion)](bool) {
            gone->view().removeFromSuperview();
            gone->view().setTransform({});
            gone->view().setUserInteractionEnabled(true);
            gone->endAppearanceTransition();
            if (const std::shared_ptr<UIViewController> alive = uncovered.lock())
                alive->endAppearanceTransition();
            if (completion)
                completion();
        });
}

UIViewController* UIViewController::presentedViewController() {
    return containmentRoot().presented_.get();
}

UIViewController* UIViewController::presentingViewController() {
    return containmentRoot().presenting_;
}

void UIViewController::beginAppearanceTransition(bool appearing, bool animated) {
    const bool visible = appearance_ == Appearance::appearing || appearance_ == Appearance::appeared;
    if (appearing == visible)
        return;
    appearance_ = appearing ? Appearance::appearing : Appearance::disappearing;
    transitionAnimated_ = animated;
    if (appearing)
        viewWillAppear(animated);
    else
        viewWillDisappear(animated);
    for (const std::shared_ptr<UIViewController>& child : shownChildren())
        child->beginAppearanceTransition(appearing, animated);
}

void UIViewController::endAppearanceTransition() {
    if (appearance_ == Appearance::appearing) {
        appearance_ = Appearance::appeared;
        viewDidAppear(transitionAnimated_);
    } else if (appearance_ == Appearance::disappearing) {
        appearance_ = Appearance::disappeared;
        viewDidDisappear(transitionAnimated_);
    } else {
        return;
    }
    for (const std::shared_ptr<UIViewController>& child : shownChildren())
        child->endAppearanceTransition();
}

std::vector<std::shared_ptr<UIViewController>> UIViewController::shownChildren() const {
    std::vector<std::shared_ptr<UIViewController>> shown;
    for (const std::shared_ptr<UIViewController>& child : children_)
        if (view_ && child->view_ && child->view_->isDescendant(*view_))
            shown.push_back(child);
    return shown;
}

void UIViewController::viewMovedToWindow() {
    // During a transition the code that runs it notifies the controller.
    if (appearance_ == Appearance::appearing || appearance_ == Appearance::disappearing)
        return;
    const std::shared_ptr<UIViewController> self = weak_from_this().lock();
    if (!self)
        return;
    beginAppearanceTransition(view_->window() != nullptr, false);
    endAppearanceTransition();
}

} // namespace sela
