#pragma once

#include "platform/uikit/UIColor.h"
#include "platform/uikit/UIView.h"
#include "platform/uikit/UIViewController.h"

#include <functional>
#include <memory>
#include <optional>

namespace sela {

class UIScrollView;

/// The root of the view tree, as large as the screen: receives touches from the host, runs the layout pass,
/// and keeps track of what must be drawn. Main thread only.
///
/// The host calls `prepareFrame` when a frame is due, draws what `takeDirtyRect` returns, and checks
/// `needsFrame` for whether another frame is due; the handler of `setNeedsFrameHandler` is called when that
/// changes while it waits.
class UIWindow : public UIView {
public:
    /// `size` in points becomes the screen's size.
    explicit UIWindow(CGSize size);
    ~UIWindow() override;

    /// Sets a window size other than the screen's, which the root view follows. Screens that are loaded later
    /// are still measured for the screen, as those that are shown were.
    void setSize(CGSize size);

    UIViewController* rootViewController() const { return rootViewController_.get(); }

    /// Shows `controller`'s view over the whole window, in place of a former one, and owns it.
    void setRootViewController(std::shared_ptr<UIViewController> controller);

    const UITraitCollection& traitCollection() const { return traitCollection_; }
    void setTraitCollection(const UITraitCollection& traits);

    // Frames

    /// Updates the tree for this moment: rolling lists move, and views that asked for layout are laid out.
    void prepareFrame();

    /// The part of the window (points) that looks different since the last call, animations included; empty
    /// when nothing does. Call it after `prepareFrame`.
    CGRect takeDirtyRect();

    /// Whether another frame is due: something changed, or moves.
    bool needsFrame() const;

    /// Whether nothing moves that will come to rest: no animation of limited length, no rolling list, no
    /// finger down. A spinner does not count.
    bool isIdle() const;

    /// Called when a frame becomes due after `needsFrame` was false.
    void setNeedsFrameHandler(std::function<void()> handler) { needsFrameHandler_ = std::move(handler); }

    void layoutSubviews() override;

    // Input (points of the window)

    /// A finger comes down, moves, goes up; or the system takes it away. A second finger is ignored by the
    /// caller.
    void touchBegan(CGPoint point);
    void touchMoved(CGPoint point);
    void touchEnded(CGPoint point);
    void touchCancelled();

    /// A finger comes down and goes up again at once.
    void tap(CGPoint point) {
        touchBegan(point);
        touchEnded(point);
    }

    /// A wheel over `point` asks the list there to move by `points`, downwards when positive.
    void wheelScrolled(CGPoint point, double points);

    /// The part of `view` that lies inside all views around it, in window points; empty when it is in another
    /// window or shrunk to nothing. What is hidden or covered counts, too.
    CGRect shownRect(const UIView& view) const;

    /// Whether a tap in the middle of `view`'s shown part would reach `view` or something inside it: it is in
    /// this window, not hidden and not covered. Its middle, in window points, or absent.
    std::optional<CGPoint> tapPoint(UIView& view);

private:
    friend class UIView;

    struct TouchSequence {
        ViewReference<UIView> view;
        ViewReference<UIScrollView> scrollView;
        CGPoint start;
        CGPoint last;
        bool strayed = false;   ///< moved too far for a tap
        bool scrolling = false; ///< the scroll view has taken it over
    };

    UIWindow* asWindow() override { return this; }
    static void prepareSubtree(UIView& view);
    static bool isMoving(const UIView& view);
    void invalidate(const CGRect& rect);
    void requestFrame();
    void viewLeft(UIView& view);

    std::shared_ptr<UIViewController> rootViewController_;
    UITraitCollection traitCollection_;
    CGRect dirtyRect_;
    bool frameRequested_ = false;
    std::function<void()> needsFrameHandler_;
    std::optional<TouchSequence> touch_;
};

} // namespace sela
