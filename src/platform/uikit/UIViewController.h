#pragma once

#include "platform/uikit/UINavigationItem.h"
#include "platform/uikit/UIView.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace sela {

class NSExtensionContext;
class UINavigationController;

/// A screen: a root view that it makes when first asked for, and the steps of its life. Always held by
/// `std::shared_ptr`; longer-lived objects hold it weakly. Main thread only.
class UIViewController : public std::enable_shared_from_this<UIViewController> {
public:
    /// The name of an archive is ignored: views are built in code.
    explicit UIViewController(const std::optional<std::string>& nibName = std::nullopt);
    explicit UIViewController(const NSCoder& coder);
    virtual ~UIViewController();
    UIViewController(const UIViewController&) = delete;
    UIViewController& operator=(const UIViewController&) = delete;

    /// The class's name without its namespace.
    std::string className() const;

    /// The root view, made with the screen's bounds (`loadView`, then `viewDidLoad`) when it is first asked
    /// for.
    UIView& view();
    bool isViewLoaded() const { return view_ != nullptr; }
    void loadViewIfNeeded() { view(); }

    /// Called once, after the view was made. An override of any of these calls its base first.
    virtual void viewDidLoad() {}
    virtual void viewWillAppear(bool /*animated*/) {}
    virtual void viewDidAppear(bool /*animated*/) {}
    virtual void viewWillDisappear(bool /*animated*/) {}
    virtual void viewDidDisappear(bool /*animated*/) {}

    /// Called in the layout pass after the root view's subviews have their frames.
    virtual void viewDidLayoutSubviews() {}

    // Containment

    UIViewController* parent() const { return parent_; }
    const std::vector<std::shared_ptr<UIViewController>>& children() const { return children_; }

    /// Owns `child` from now on; a former parent loses it. The caller then adds the child's view and calls
    /// the child's `didMove`.
    void addChild(std::shared_ptr<UIViewController> child);

    /// The parent releases this controller, which may be destroyed by that.
    void removeFromParent();

    /// Called with the new parent (null: none) before and after a move.
    virtual void willMove(UIViewController* /*parent*/) {}
    virtual void didMove(UIViewController* /*parent*/) {}

    /// The nearest navigation controller above; null when there is none.
    UINavigationController* navigationController() const;
    UINavigationItem& navigationItem() { return navigationItem_; }

    /// The share request that this controller, or the nearest one around it, was started for; null for none.
    std::shared_ptr<NSExtensionContext> extensionContext() const;
    void setExtensionContext(std::shared_ptr<NSExtensionContext> context) {
        extensionContext_ = std::move(context);
    }

    // Presentation

    using Completion = std::function<void()>;

    /// Seconds that a screen takes to slide in from below, or out again.
    static constexpr double presentationDuration = 0.35;

    /// Shows `controller` over the whole window, sliding in from below when `animated`, and owns it until it
    /// is dismissed. `completion` (may be empty) is called on the main queue once it is there. Without a
    /// window, or when something is presented already, nothing happens and nothing is called.
    virtual void present(std::shared_ptr<UIViewController> controller, bool animated,
                         Completion completion = {});

    /// Dismisses what this controller presents, or else this controller (or the one it is a child of) where
    /// it is presented. `completion` is called on the main queue when that has ended, also when there was
    /// nothing to dismiss.
    virtual void dismiss(bool animated, Completion completion = {});

    /// What this controller or the one around it presents, and what presents it; null for nothing.
    UIViewController* presentedViewController();
    UIViewController* presentingViewController();

protected:
    /// Makes the root view; an override gives `setView` a view of its own.
    virtual void loadView();
    void setView(std::unique_ptr<UIView> view);

    /// Brackets a transition that a container runs: calls viewWill(Dis)Appear and viewDid(Dis)Appear, each
    /// once.
    void beginAppearanceTransition(bool appearing, bool animated);
    void endAppearanceTransition();

private:
    friend class UIView;
    friend class UINavigationController;
    friend class UIWindow;

    enum class Appearance { disappeared, appearing, appeared, disappearing };

    UIViewController& containmentRoot();
    std::vector<std::shared_ptr<UIViewController>> shownChildren() const;
    void viewMovedToWindow();
    void dismissPresented(bool animated, Completion completion);

    std::unique_ptr<UIView> view_;
    Appearance appearance_ = Appearance::disappeared;
    bool transitionAnimated_ = false;
    UIViewController* parent_ = nullptr;
    std::vector<std::shared_ptr<UIViewController>> children_;
    UINavigationItem navigationItem_;
    std::shared_ptr<NSExtensionContext> extensionContext_;
    std::shared_ptr<UIViewController> presented_;
    UIViewController* presenting_ = nullptr;
};

} // namespace sela
