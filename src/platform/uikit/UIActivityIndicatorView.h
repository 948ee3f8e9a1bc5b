#pragma once

#include "platform/uikit/UIView.h"

namespace sela {

/// A spinner of 20 by 20 points that shows that work is in progress; hidden while it does not turn. Main
/// thread only.
class UIActivityIndicatorView : public UIView {
public:
    /// Length of a side in points.
    static constexpr double side = 20;

    /// Spokes of the spinner, and seconds of a turn, also where motion is to be reduced.
    static constexpr int spokes = 8;
    static constexpr double turnDuration = 1;
    static constexpr double calmTurnDuration = 4;

    /// In the platform's grey style.
    explicit UIActivityIndicatorView(std::string_view name = {});

    const UIColor& color() const { return color_; }
    void setColor(const UIColor& color);

    void startAnimating();
    void stopAnimating();

    /// Whether it turns (the platform's `isAnimating`, which here says whether the view's look moves).
    bool isSpinning() const { return spinning_; }

    /// The spoke that is darkest now, counted clockwise from the top.
    int leadingSpoke() const;

    ViewContent content() const override;
    CGSize intrinsicContentSize() const override { return {side, side}; }
    bool isAnimating() const override;
    bool animatesForever() const override { return spinning_; }

private:
    UIColor color_;
    bool spinning_ = false;
    double startTime_ = 0;
};

} // namespace sela
