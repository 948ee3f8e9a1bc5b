#include "platform/uikit/UIControl.h"

#include <algorithm>

namespace sela {

namespace {

/// How far, in points, a finger may leave a control and still count as inside, as on the phone.
constexpr double touchSlack = 70;

} // namespace

void UIControl::sendActions(Event event) {
    const std::vector<TargetAction> targets = targets_;
    const ViewReference alive(*this);
    for (const TargetAction& target : targets) {
        if (!alive)
            return;
        if (target.event == event)
            target.action(*this);
    }
}

void UIControl::setEnabled(bool enabled) {
    if (enabled == enabled_)
        return;
    enabled_ = enabled;
    highlighted_ = false;
    stateChanged();
}

void UIControl::setHighlighted(bool highlighted) {
    if (highlighted == highlighted_)
        return;
    highlighted_ = highlighted;
    stateChanged();
}

bool UIControl::pointInside(CGPoint point) const {
    const CGSize size = bounds().size;
    return !bounds().isEmpty() && bounds()
                                      .insetBy(std::min(0.0, (size.width - minimumTouchSide) / 2),
                                               std::min(0.0, (size.height - minimumTouchSide) / 2))
                                      .contains(point);
}

bool UIControl::isTouchInside(const UITouch& touch) const {
    return bounds().insetBy(-touchSlack, -touchSlack).contains(touch.location(*this));
}

void UIControl::touchesBegan(const UITouch&) {
    if (!enabled_)
        return;
    tracking_ = true;
    setHighlighted(true);
    sendActions(Event::touchDown);
}

void UIControl::touchesMoved(const UITouch& touch) {
    if (tracking_)
        setHighlighted(enabled_ && isTouchInside(touch));
}

void UIControl::touchesEnded(const UITouch& touch) {
    if (!std::exchange(tracking_, false) || !enabled_)
        return;
    setHighlighted(false);
    sendActions(isTouchInside(touch) ? Event::touchUpInside : Event::touchUpOutside);
}

void UIControl::touchesCancelled(const UITouch&) {
    if (!std::exchange(tracking_, false))
        return;
    setHighlighted(false);
    sendActions(Event::touchCancel);
}

} // namespace sela
