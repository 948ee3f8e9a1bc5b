#include "platform/uikit/UINavigationController.h"

#include "platform/foundation/DispatchQueue.h"
#include "platform/uikit/UIAccessibility.h"
#include "platform/uikit/UIWindow.h"

#include <algorithm>
#include <utility>

namespace sela {

namespace {

/// How far the lower screen moves aside, in widths, and how dark it gets.
constexpr double parallax = 0.3;
const UIColor dimmed = UIColor::dynamic({0, 0, 0, 0.12}, {0, 0, 0, 0.4});

/// The shadow along the edge of the upper screen, and the width of the view that casts it, in points.
constexpr double edgeShadowOpacity = 0.4;
constexpr double edgeShadowRadius = 4;
constexpr double edgeWidth = 3 * edgeShadowRadius;

} // namespace

struct UINavigationController::Transition {
    Transition(std::shared_ptr<UIViewController> comes, std::shared_ptr<UIViewController> goes)
        : incoming(std::move(comes)), outgoing(std::move(goes)) {}

    std::shared_ptr<UIViewController> incoming;
    std::shared_ptr<UIViewController> outgoing;
    UIView dimming; ///< over the lower screen
    UIView edge;    ///< under the upper screen's edge, whose shadow it casts
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
        if (screen->viewController())
            screen->setLayoutFrame(view().bounds());
}

void UINavigationController::pushViewController(std::shared_ptr<UIViewController> controller, bool animated) {
    finishTransition();
    const std::shared_ptr<UIViewController> outgoing = children().back();
    addChild(std::move(controller));
    if (isViewLoaded())
        show(children().back(), outgoing, true, animated);
}

std::shared_ptr<UIViewController> UINavigationController::popViewController(bool animated) {
    if (children().size() < 2)
        return nullptr;
    finishTransition();
    std::shared_ptr<UIViewController> outgoing = children().back();
    outgoing->willMove(nullptr);
    outgoing->removeFromParent();
    if (isViewLoaded())
        show(children().back(), outgoing, false, animated);
    // The pop may be called from a method of the popped screen.
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
    transition_ = std::make_shared<Transition>(incoming, outgoing);
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
    UIView& upper = forward ? entering : leaving;
    UIView& lower = forward ? leaving : entering;
    const CGAffineTransform aside = CGAffineTransform::translation(-parallax * width, 0);
    const CGAffineTransform out = CGAffineTransform::translation(width, 0);
    UIView& dimming = transition_->dimming;
    UIView& edge = transition_->edge;
    addDepth(upper, fromRight);
    const auto place = [&](bool upperIsOut) {
        lower.setTransform(upperIsOut ? CGAffineTransform() : aside);
        dimming.setAlpha(upperIsOut ? 0 : 1);
        upper.setTransform(upperIsOut ? out : CGAffineTransform());
        edge.setTransform(upper.transform());
    };
    place(forward);
    UIView::animate(
        transitionDuration, [&] { place(!forward); },
        [self = weak_from_this(), transition = std::weak_ptr(transition_)](bool) {
            const std::shared_ptr<UIViewController> alive = self.lock();
            if (!alive)
                return;
            auto& navigationController = static_cast<UINavigationController&>(*alive);
            if (navigationController.transition_ && navigationController.transition_ == transition.lock())
                navigationController.finishTransition();
        });
}

/// Inserts the dimming and the shadow below the upper screen of a slide.
void UINavigationController::addDepth(const UIView& upper, bool fromRight) {
    const auto place = std::ranges::find(view().subviews(), &upper) - view().subviews().begin();
    const CGRect bounds = view().bounds();
    UIView& dimming = transition_->dimming;
    dimming.setFrame(bounds);
    dimming.setBackgroundColor(dimmed);
    view().insertSubview(dimming, static_cast<std::size_t>(place));
    UIView& edge = transition_->edge;
    edge.setFrame({fromRight ? bounds.maxX() - edgeWidth : bounds.minX(), bounds.minY(), edgeWidth,
                   bounds.size.height});
    edge.setBackgroundColor(UIColor::black());
    edge.layer().setShadowOpacity(edgeShadowOpacity);
    edge.layer().setShadowOffset({0, 0});
    edge.layer().setShadowRadius(edgeShadowRadius);
    view().insertSubview(edge, static_cast<std::size_t>(place) + 1);
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
