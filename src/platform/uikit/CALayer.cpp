#include "platform/uikit/CALayer.h"

#include "platform/foundation/DispatchQueue.h"
#include "platform/foundation/FatalError.h"
#include "platform/uikit/UIAccessibility.h"
#include "platform/uikit/UIView.h"

namespace sela {

template<class T>
void CALayer::change(T& value, const T& newValue) {
    if (value == newValue)
        return;
    view_.setNeedsDisplay();
    value = newValue;
    view_.setNeedsDisplay();
}

void CALayer::setCornerRadius(double radius) {
    change(cornerRadius_, radius);
}

void CALayer::setMasksToBounds(bool masks) {
    change(masksToBounds_, masks);
}

void CALayer::setBorderWidth(double width) {
    change(borderWidth_, width);
}

void CALayer::setBorderColor(const UIColor& color) {
    change(borderColor_, color);
}

void CALayer::setShadowOpacity(double opacity) {
    change(shadowOpacity_, opacity);
}

void CALayer::setShadowColor(const UIColor& color) {
    change(shadowColor_, color);
}

void CALayer::setShadowOffset(CGSize offset) {
    change(shadowOffset_, offset);
}

void CALayer::setShadowRadius(double radius) {
    change(shadowRadius_, radius);
}

void CALayer::add(const CAKeyframeAnimation& animation, const std::string& key) {
    if (animation.keyPath != "transform.translation.x")
        fatalError("CALayer: cannot animate " + animation.keyPath);
    const double now = DispatchQueue::main().now();
    animations_.insert_or_assign(key, Running{animation, now});
    view_.setNeedsDisplay();
    DispatchQueue::main().asyncAfter(animation.duration, [view = ViewReference(view_), key, now] {
        UIView* const alive = view.get();
        if (!alive)
            return;
        const auto found = alive->layer().animations_.find(key);
        if (found != alive->layer().animations_.end() && found->second.startTime == now)
            alive->layer().removeAnimation(key);
    });
}

const CAKeyframeAnimation* CALayer::animation(const std::string& key) const {
    const auto found = animations_.find(key);
    return found == animations_.end() ? nullptr : &found->second.animation;
}

void CALayer::removeAnimation(const std::string& key) {
    if (!animations_.contains(key))
        return;
    view_.setNeedsDisplay();
    animations_.erase(key);
    view_.setNeedsDisplay();
}

void CALayer::removeAllAnimations() {
    while (!animations_.empty())
        removeAnimation(animations_.begin()->first);
}

double CALayer::animatedTranslationX() const {
    if (UIAccessibility::isReduceMotionEnabled())
        return 0;
    double translation = 0;
    for (const auto& [key, running] : animations_)
        translation += running.animation.value(DispatchQueue::main().now() - running.startTime);
    return translation;
}

} // namespace sela
