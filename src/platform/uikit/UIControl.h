#pragma once

#include "platform/uikit/UIView.h"

#include <functional>
#include <utility>
#include <vector>

namespace sela {

/// A view that turns touches into actions of its targets. It keeps its touches: superviews never see them.
/// Main thread only.
class UIControl : public UIView {
public:
    enum class Event { touchDown, touchUpInside, touchUpOutside, touchCancel };

    /// The smallest side, in points, that a finger hits reliably.
    static constexpr double minimumTouchSide = 44;

    using UIView::UIView;

    /// Calls `action` of `target` with this control at `event`, after the actions added before. The target
    /// must outlive the control (usually it owns it); an action may destroy the control.
    template<class Target, class Owner, class Sender>
    void addTarget(Target* target, void (Owner::*action)(Sender&), Event event) {
        targets_.push_back({event, [target, action](UIControl& control) {
                                (target->*action)(static_cast<Sender&>(control));
                            }});
    }

    /// Runs the actions of `event`, as a touch would.
    void sendActions(Event event);

    bool isEnabled() const { return enabled_; }

    /// A disabled control swallows touches.
    void setEnabled(bool enabled);

    /// Whether a finger is down on it now.
    bool isHighlighted() const { return highlighted_; }

    /// A number for its owner; 0 at first.
    int tag() const { return tag_; }
    void setTag(int tag) { tag_ = tag; }

    /// A control that looks smaller than `minimumTouchSide` takes the touches around it, too.
    bool pointInside(CGPoint point) const override;

    void touchesBegan(const UITouch& touch) override;
    void touchesMoved(const UITouch& touch) override;
    void touchesEnded(const UITouch& touch) override;
    void touchesCancelled(const UITouch& touch) override;

protected:
    /// The look depends on `isHighlighted` and `isEnabled`, one of which changed.
    virtual void stateChanged() {}

private:
    struct TargetAction {
        Event event;
        std::function<void(UIControl&)> action;
    };

    void setHighlighted(bool highlighted);
    bool isTouchInside(const UITouch& touch) const;

    std::vector<TargetAction> targets_;
    bool enabled_ = true;
    bool highlighted_ = false;
    bool tracking_ = false; ///< a touch that began here is still down
    int tag_ = 0;
};

} // namespace sela
