#pragma once

#include "platform/uikit/CAKeyframeAnimation.h"
#include "platform/uikit/Geometry.h"
#include "platform/uikit/UIColor.h"

#include <map>
#include <optional>
#include <string>

namespace sela {

class UIView;

/// The part of a view that decides how its rectangle is drawn: rounded corners, border, shadow, and
/// animations by key. Owned by its view; main thread only.
class CALayer {
public:
    explicit CALayer(UIView& view) : view_(view) {}
    CALayer(const CALayer&) = delete;
    CALayer& operator=(const CALayer&) = delete;

    /// Radius of the corners in points; rounds background and border, and what is inside when it masks.
    double cornerRadius() const { return cornerRadius_; }
    void setCornerRadius(double radius);

    /// Whether subviews and content are cut off at the (rounded) bounds: the view's `clipsToBounds`.
    bool masksToBounds() const { return masksToBounds_; }
    void setMasksToBounds(bool masks);

    /// Width in points of a border drawn inside the bounds; 0 draws none. Black unless a colour is set.
    double borderWidth() const { return borderWidth_; }
    void setBorderWidth(double width);
    const UIColor& borderColor() const { return borderColor_; }
    void setBorderColor(const UIColor& color);

    /// A shadow of what the view and its subviews draw, below it; opacity 0 (as at first) draws none. The
    /// radius is the blur's standard deviation in points. A layer that masks has no shadow.
    double shadowOpacity() const { return shadowOpacity_; }
    void setShadowOpacity(double opacity);
    const UIColor& shadowColor() const { return shadowColor_; }
    void setShadowColor(const UIColor& color);
    CGSize shadowOffset() const { return shadowOffset_; }
    void setShadowOffset(CGSize offset);
    double shadowRadius() const { return shadowRadius_; }
    void setShadowRadius(double radius);

    /// Starts `animation` now; one that runs under the same key is replaced. It is removed when its duration
    /// has passed, or when the view leaves its window. A key path other than "transform.translation.x" stops
    /// the process.
    void add(const CAKeyframeAnimation& animation, const std::string& key);

    /// The running animation under that key; null when there is none.
    const CAKeyframeAnimation* animation(const std::string& key) const;
    void removeAnimation(const std::string& key);
    void removeAllAnimations();
    bool hasAnimations() const { return !animations_.empty(); }

    /// How far the running animations move the view to the right now, in points; 0 where motion is to be
    /// reduced.
    double animatedTranslationX() const;

private:
    struct Running {
        CAKeyframeAnimation animation;
        double startTime;
    };

    template<class T>
    void change(T& value, const T& newValue);

    UIView& view_;
    double cornerRadius_ = 0;
    bool masksToBounds_ = false;
    double borderWidth_ = 0;
    UIColor borderColor_ = UIColor::black();
    double shadowOpacity_ = 0;
    UIColor shadowColor_ = UIColor::black();
    CGSize shadowOffset_{0, -3};
    double shadowRadius_ = 3;
    std::map<std::string, Running> animations_;
};

} // namespace sela
