#include "platform/uikit/UIScrollView.h"

#include "platform/foundation/DispatchQueue.h"

#include <algorithm>

namespace sela {

namespace {

constexpr double frameDuration = 1.0 / 60;

/// A finger that rests this long (seconds) before it goes up causes no roll.
constexpr double restTime = 0.1;

/// Lengths of the indicator in points.
constexpr double indicatorWidth = 3;
constexpr double indicatorMargin = 3;
constexpr double shortestIndicator = 36;

/// The weight of the newest step in the finger's velocity.
constexpr double velocityWeight = 0.6;

} // namespace

UIScrollView::UIScrollView(const CGRect& frame) : UIScrollView(std::string_view()) {
    setFrame(frame);
}

UIScrollView::UIScrollView(std::string_view name) : UIView(name) {
    setClipsToBounds(true);
    indicator_.setUserInteractionEnabled(false);
    indicator_.setBackgroundColor(UIColor::dynamic({0, 0, 0, 0.35}, {1, 1, 1, 0.4}));
    indicator_.layer().setCornerRadius(indicatorWidth / 2);
}

void UIScrollView::setContentOffset(CGPoint offset) {
    motion_.reset();
    moveTo(offset.y);
}

void UIScrollView::setContentSize(CGSize size) {
    if (size != contentSize_) {
        contentSize_ = size;
        if (!drag_ && !motion_)
            moveTo(std::clamp(contentOffset().y, 0.0, maximumOffset()));
    }
    placeIndicator();
}

/// A hidden view must not tell how long its content is, which its tree would.
void UIScrollView::setHidden(bool hidden) {
    UIView::setHidden(hidden);
    placeIndicator();
}

void UIScrollView::placeIndicator() {
    const CGRect bounds = this->bounds();
    const double room = bounds.size.height - 2 * indicatorMargin;
    if (isHidden() || maximumOffset() <= 0 || room < shortestIndicator) {
        indicator_.removeFromSuperview();
        return;
    }
    const double length = std::max(shortestIndicator, room * bounds.size.height / contentSize_.height);
    const double way = std::clamp(contentOffset().y / maximumOffset(), 0.0, 1.0);
    const bool fromRight =
        effectiveUserInterfaceLayoutDirection() == UIUserInterfaceLayoutDirection::rightToLeft;
    const double x = fromRight ? indicatorMargin : bounds.maxX() - indicatorMargin - indicatorWidth;
    performWithoutAnimation([&] {
        indicator_.setFrame(
            {x, bounds.minY() + indicatorMargin + way * (room - length), indicatorWidth, length});
    });
    if (!indicator_.superview())
        addSubview(indicator_);
}

double UIScrollView::maximumOffset() const {
    return std::max(0.0, contentSize_.height - bounds().size.height);
}

bool UIScrollView::isAnimating() const {
    return motion_ || UIView::isAnimating();
}

void UIScrollView::moveTo(double offset) {
    if (offset == contentOffset().y)
        return;
    performWithoutAnimation([&] { setBounds({{0, offset}, bounds().size}); });
    placeIndicator();
    didScroll();
}

bool UIScrollView::holdScrolling() {
    advance();
    const bool moved = motion_.has_value();
    motion_.reset();
    return moved;
}

void UIScrollView::beginDragging(const UITouch& touch) {
    motion_.reset();
    const double y = touch.locationInWindow.y;
    drag_ = Drag{ScrollMotion::pullFor(contentOffset().y, 0, maximumOffset(), bounds().size.height), y, y,
                 touch.timestamp, 0};
}

void UIScrollView::drag(const UITouch& touch) {
    if (!drag_)
        return;
    const double y = touch.locationInWindow.y;
    const double elapsed = touch.timestamp - drag_->previousTime;
    if (elapsed > 0) {
        const double velocity = (drag_->previousY - y) / elapsed;
        drag_->velocity =
            elapsed > restTime ? velocity : drag_->velocity + velocityWeight * (velocity - drag_->velocity);
        drag_->previousY = y;
        drag_->previousTime = touch.timestamp;
    }
    moveTo(ScrollMotion::rubberBand(drag_->startOffset + drag_->startY - y, 0, maximumOffset(),
                                    bounds().size.height));
}

void UIScrollView::endDragging(const UITouch& touch) {
    if (!drag_)
        return;
    const bool rested = touch.timestamp - drag_->previousTime > restTime;
    const double velocity = rested ? 0 : drag_->velocity;
    drag_.reset();
    startMotion(velocity);
}

void UIScrollView::cancelDragging() {
    if (!drag_)
        return;
    drag_.reset();
    startMotion(0);
}

void UIScrollView::scrollByWheel(double points) {
    if (!scrollEnabled_ || drag_)
        return;
    setContentOffset({0, std::clamp(contentOffset().y + points, 0.0, maximumOffset())});
}

void UIScrollView::didMoveToWindow() {
    if (window())
        return;
    drag_.reset();
    motion_.reset();
}

void UIScrollView::startMotion(double velocity) {
    const ScrollMotion motion(contentOffset().y, velocity, 0, maximumOffset());
    if (motion.duration() <= 0)
        return;
    motion_ = Motion{motion, DispatchQueue::main().now(), ++motions_};
    scheduleFrame();
}

void UIScrollView::advance() {
    if (!motion_)
        return;
    const double elapsed = DispatchQueue::main().now() - motion_->startTime;
    const double offset = motion_->motion.position(elapsed);
    if (elapsed >= motion_->motion.duration())
        motion_.reset();
    moveTo(offset);
}

void UIScrollView::scheduleFrame() {
    DispatchQueue::main().asyncAfter(frameDuration, [view = ViewReference(*this), serial = motion_->serial] {
        UIScrollView* const scrollView = view.get();
        if (!scrollView || !scrollView->motion_ || scrollView->motion_->serial != serial)
            return;
        scrollView->advance();
        if (scrollView->motion_)
            scrollView->scheduleFrame();
    });
}

} // namespace sela
