#include "platform/uikit/UINavigationController.h"

#include "platform/foundation/DispatchQueue.h"
#include "platform/uikit/UIAccessibility.h"
#include "platform/uikit/UIWindow.h"

#include <utility>

namespace sela {

namespace {

/// How far the lower screen moves aside, in widths.
constexpr double parallax = 0.3;

} // namespace

struct UINavigationController::Transition {
    std::shared_ptr<UIViewController> incoming;
    std::shared_ptr<UIViewController> outgoing;
};

UINavigationController::UINavigationController(std::shared_ptr<UIViewController> rootViewController) {
    addChild(std::move(rootViewController));
}

UIViewController* UINavigationController::topViewController() const {
    return children().back().get();
}

void UINavigationController::setNavigationBarHidden(bool hidden, bool) {
    navigationBarHidden_ = hidden;
}

void UINavigationController::viewDidLoad() {
    UIViewController::viewDidLoad();
    view().setClipsToBounds(true);
    view().addSubview(topViewController()->view());
    topViewController()->didMove(this);
}

void UINavigationController::viewDidLayoutSubviews() {
    UIViewController::viewDidLayoutSubviews();
    for (UIView* const screen : view().subviews())
        screen->setLayoutFrame(view().bounds());
}

void UINavigationController::pushViewController(std::shared_ptr<UIViewController> controller, bool animated) {
    finishTransition();
    const std::shared_ptr<UIViewController> outgoing = children().back();
    addChild(controller);
    if (isViewLoaded())
        show(controller, outgoing, true, animated);
}

std::shared_ptr<UIViewController> UINavigationController::popViewController(bool animated) {
    if (children().size() < 2)
        return nullptr;
    finishTransition();
    const std::shared_ptr<UIViewController> outgoing = children().back();
    outgoing->willMove(nullptr);
    outgoing->removeFromParent();
    if (isViewLoaded())
        show(children().back(), outgoing, false, animated);
    // The pop may come from a method of the screen that goes.
    DispatchQueue::main().async([outgoing] {});
    return outgoing;
}

void UINavigationController::show(const std::shared_ptr<UIViewController>& incoming,
                                  const std::shared_ptr<UIViewController>& outgoing, bool forward,
                                  bool animated) {
    UIWindow* const window = view().window();
    // Screens come from where reading ends.
    const bool fromRight =
        view().effectiveUserInterfaceLayoutDirection() == UIUserInterfaceLayoutDirection::rightToLeft;
    const double width = (fromRight ? -1 : 1) * view().bounds().size.width;
    UIView& entering = incoming->view();
    UIView& leaving = outgoing->view();
    transition_ = std::make_shared<Transition>(Transition{incoming, outgoing});
    if (window) {
        window->touchCancelled();
        outgoing->beginAppearanceTransition(false, animated);
        incoming->beginAppearanceTransition(true, animated);
    }
    entering.setLayoutFrame(view().bounds());
    view().insertSubview(entering, forward ? view().subviews().size() : 0);
    if (!window || !animated || UIAccessibility::isReduceMotionEnabled()) {
        finishTransition();
        return;
    }
    view().setUserInteractionEnabled(false);
    entering.setTransform(CGAffineTransform::translation(forward ? width : -parallax * width, 0));
    UIView::animate(
        transitionDuration,
        [&] {
            entering.setTransform({});
            leaving.setTransform(CGAffineTransform::translation(forward ? -parallax * width : width, 0));
        },
        [self = weak_from_this(), transition = std::weak_ptr(transition_)](bool) {
            const std::shared_ptr<UIViewController> alive = self.lock();
            if (!alive)
                return;
            auto& navigationController = static_cast<UINavigationController&>(*alive);
            if (navigationController.transition_ && navigationController.transition_ == transition.lock())
                navigationController.finishTransition();
        });
}

void UINavigationController::finishTransition() {
    const std::shared_ptr<Transition> transition = std::exchange(transition_, nullptr);
    if (!transition)
        return;
    UIView& leaving = transition->outgoing->view();
    leaving.removeFromSuperview();
    leaving.setTransform({});
    transition->incoming->view().setTransform({});
    view().setUserInteractionEnabled(true);
    transition->outgoing->endAppearanceTransition();
    transition->incoming->endAppearanceTransition();
    if (transition->incoming->parent() == this)
        transition->incoming->didMove(this);
}

} // namespace sela
