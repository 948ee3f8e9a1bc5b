#pragma once

#include "platform/uikit/ScrollMotion.h"
#include "platform/uikit/UIView.h"

#include <optional>

namespace sela {

/// A view onto content that is taller than itself: the finger drags it, it rolls on when released and bounces
/// at its ends; a wheel moves it too. Scrolls vertically. An indicator along its side shows the length of the
/// content and the visible part, when there is more than fits. Main thread only.
///
/// A touch belongs to the views inside until the finger has moved by more than `tapMovementLimit`; then the
/// scroll view takes it over and those views see it cancelled.
class UIScrollView : public UIView {
public:
    explicit UIScrollView(const CGRect& frame = {});
    explicit UIScrollView(std::string_view name);

    /// The content's point at the top left corner: the origin of the bounds.
    CGPoint contentOffset() const { return bounds().origin; }

    /// Moves the content to `offset` at once and ends any rolling; not limited to the ends.
    void setContentOffset(CGPoint offset);

    CGSize contentSize() const { return contentSize_; }

    /// Sets the content's size; an offset that is now beyond the end moves back to it.
    void setContentSize(CGSize size);

    void setHidden(bool hidden) override;

    /// The largest vertical offset at rest; the smallest is 0.
    double maximumOffset() const;

    bool isScrollEnabled() const { return scrollEnabled_; }
    void setScrollEnabled(bool enabled) { scrollEnabled_ = enabled; }

    /// Whether a finger drags it, and whether it rolls on or bounces back by itself.
    bool isDragging() const { return drag_.has_value(); }
    bool isDecelerating() const { return motion_.has_value(); }

    bool isAnimating() const override;
    void prepareForDisplay() override { advance(); }

    /// From the window: the finger came down inside (stops rolling; true when it did roll, so that the touch
    /// is no tap), starts to drag, drags on, lets go, or is taken away.
    bool holdScrolling();
    void beginDragging(const UITouch& touch);
    void drag(const UITouch& touch);
    void endDragging(const UITouch& touch);
    void cancelDragging();

    /// Moves by `points` of a wheel, downwards when positive, at most to the ends.
    void scrollByWheel(double points);

protected:
    /// The offset changed.
    virtual void didScroll() {}

    void didMoveToWindow() override;

private:
    struct Drag {
        double startOffset;
        double startY;
        double previousY;
        double previousTime;
        double velocity;
    };
    struct Motion {
        ScrollMotion motion;
        double startTime;
        int serial;
    };

    void moveTo(double offset);
    void placeIndicator();
    void startMotion(double velocity);
    void advance();
    void scheduleFrame();

    UIView indicator_{"verticalScrollIndicator"};
    CGSize contentSize_;
    bool scrollEnabled_ = true;
    std::optional<Drag> drag_;
    std::optional<Motion> motion_;
    int motions_ = 0;
};

} // namespace sela
