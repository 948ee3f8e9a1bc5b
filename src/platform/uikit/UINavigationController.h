#pragma once

#include "platform/uikit/UIViewController.h"

#include <memory>
#include <vector>

namespace sela {

/// A stack of screens of which the top one is shown; it owns them all. A new screen slides in from the right
/// over the former one, which it dims and casts a shadow on, and out again when it is popped, or appears at
/// once where motion is to be reduced. While screens slide, nothing inside takes touches. The bar is never
/// drawn. Main thread only.
class UINavigationController : public UIViewController {
public:
    /// Seconds of a slide.
    static constexpr double transitionDuration = 0.35;

    explicit UINavigationController(std::shared_ptr<UIViewController> rootViewController);

    /// The stack, the root first. A screen that is being popped has left it.
    const std::vector<std::shared_ptr<UIViewController>>& viewControllers() const { return children(); }
    UIViewController* topViewController() const;

    /// Puts `controller` on top. A slide that still runs is completed first.
    void pushViewController(std::shared_ptr<UIViewController> controller, bool animated);

    /// Removes the top screen and returns it; null, and nothing happens, when only the root is left. The
    /// screen lives on at least until the slide is over and the current turn of the main queue has ended.
    std::shared_ptr<UIViewController> popViewController(bool animated);

    bool isNavigationBarHidden() const { return navigationBarHidden_; }
    void setNavigationBarHidden(bool hidden, bool animated = false);

    /// Whether screens slide now.
    bool isTransitioning() const { return transition_ != nullptr; }

    void viewDidLoad() override;
    void viewDidLayoutSubviews() override;

private:
    struct Transition;

    void show(const std::shared_ptr<UIViewController>& incoming,
              const std::shared_ptr<UIViewController>& outgoing, bool forward, bool animated);
    void addDepth(const UIView& upper, bool fromRight);
    void finishTransition();

    std::shared_ptr<Transition> transition_;
    bool navigationBarHidden_ = false;
};

} // namespace sela
