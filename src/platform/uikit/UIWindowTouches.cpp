#include "platform/foundation/DispatchQueue.h"
#include "platform/uikit/UIControl.h"
#include "platform/uikit/UIScrollView.h"
#include "platform/uikit/UITapGestureRecognizer.h"
#include "platform/uikit/UIWindow.h"

#include <cmath>
#include <utility>

namespace sela {

namespace {

UITouch touchAt(CGPoint point) {
    return {point, DispatchQueue::main().now()};
}

UIScrollView* scrollViewAround(UIView* view) {
    for (; view; view = view->superview())
        if (auto* const scrollView = dynamic_cast<UIScrollView*>(view);
            scrollView && scrollView->isScrollEnabled())
            return scrollView;
    return nullptr;
}

/// The recogniser that a tap on `view` reaches; null when there is none.
UITapGestureRecognizer* recognizerFor(UIView* view) {
    for (; view; view = view->superview()) {
        for (const std::unique_ptr<UITapGestureRecognizer>& recognizer : view->gestureRecognizers())
            if (recognizer->isEnabled())
                return recognizer.get();
        if (dynamic_cast<UIControl*>(view))
            return nullptr;
    }
    return nullptr;
}

} // namespace

void UIWindow::touchBegan(CGPoint point) {
    touchCancelled();
    UIView* const view = hitTest(point);
    if (!view)
        return;
    touch_ = TouchSequence{.view = ViewReference(*view), .scrollView = {}, .start = point, .last = point};
    if (UIScrollView* const scrollView = scrollViewAround(view)) {
        touch_->scrollView = ViewReference(*scrollView);
        if (scrollView->holdScrolling()) {
            touch_->scrolling = true;
            scrollView->beginDragging(touchAt(point));
            return;
        }
    }
    view->touchesBegan(touchAt(point));
}

void UIWindow::touchMoved(CGPoint point) {
    if (!touch_)
        return;
    touch_->last = point;
    touch_->strayed |= std::hypot(point.x - touch_->start.x, point.y - touch_->start.y) > tapMovementLimit;
    UIScrollView* const scrollView = touch_->scrollView.get();
    if (touch_->scrolling) {
        if (scrollView)
            scrollView->drag(touchAt(point));
    } else if (scrollView && std::abs(point.y - touch_->start.y) > tapMovementLimit) {
        touch_->scrolling = true;
        const ViewReference<UIScrollView> scrolling = touch_->scrollView;
        if (UIView* const view = touch_->view.get())
            view->touchesCancelled(touchAt(point));
        if (UIScrollView* const stillThere = scrolling.get())
            stillThere->beginDragging(touchAt(point));
    } else if (UIView* const view = touch_->view.get()) {
        view->touchesMoved(touchAt(point));
    }
}

void UIWindow::touchEnded(CGPoint point) {
    if (!touch_)
        return;
    if (point != touch_->last)
        touchMoved(point);
    const std::optional<TouchSequence> ended = std::exchange(touch_, std::nullopt);
    if (!ended)
        return;
    if (ended->scrolling) {
        if (UIScrollView* const scrollView = ended->scrollView.get())
            scrollView->endDragging(touchAt(point));
        return;
    }
    UIView* const view = ended->view.get();
    if (!view)
        return;
    UITapGestureRecognizer* const recognizer = ended->strayed ? nullptr : recognizerFor(view);
    if (!recognizer) {
        view->touchesEnded(touchAt(point));
        return;
    }
    const ViewReference recognizing(*recognizer->view());
    view->touchesCancelled(touchAt(point));
    if (recognizing)
        recognizer->recognize();
}

void UIWindow::touchCancelled() {
    const std::optional<TouchSequence> cancelled = std::exchange(touch_, std::nullopt);
    if (!cancelled)
        return;
    if (cancelled->scrolling) {
        if (UIScrollView* const scrollView = cancelled->scrollView.get())
            scrollView->cancelDragging();
    } else if (UIView* const view = cancelled->view.get()) {
        view->touchesCancelled(touchAt(cancelled->last));
    }
}

void UIWindow::viewLeft(UIView& view) {
    if (!touch_)
        return;
    const UIView* const touched = touch_->view.get();
    if (!touched || touched == &view)
        touchCancelled();
}

void UIWindow::wheelScrolled(CGPoint point, double points) {
    if (UIScrollView* const scrollView = scrollViewAround(hitTest(point)))
        scrollView->scrollByWheel(points);
}

CGRect UIWindow::shownRect(const UIView& view) const {
    if (view.window() != this)
        return {};
    CGRect shown = view.bounds();
    for (const UIView* up = &view; up->superview(); up = up->superview())
        shown = up->toSuperview().apply(shown).intersection(up->superview()->bounds());
    return shown;
}

std::optional<CGPoint> UIWindow::tapPoint(UIView& view) {
    const CGRect shown = shownRect(view);
    const UIView* const hit = shown.isEmpty() ? nullptr : hitTest(shown.center());
    if (!hit || !hit->isDescendant(view))
        return std::nullopt;
    return shown.center();
}

} // namespace sela
