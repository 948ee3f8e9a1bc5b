#pragma once

#include "platform/uikit/UIView.h"

namespace sela {

/// A spinner of 20 by 20 points that says that work is under way. Main thread only.
class UIActivityIndicatorView : public UIView {
public:
    enum class Style { gray };

    /// Length of a side in points.
    static constexpr double side = 20;

    /// Spokes of the spinner, and seconds of a turn, also where motion is to be reduced.
    static constexpr int spokes = 8;
    static constexpr double turnDuration = 1;
    static constexpr double calmTurnDuration = 4;

    explicit UIActivityIndicatorView(Style style = Style::gray);

    const UIColor& color() const { return color_; }
    void setColor(const UIColor& color);

    void startAnimating();
    void stopAnimating();

    /// Whether it turns (the platform's `isAnimating`, which here says whether the view's look moves).
    bool isSpinning() const { return spinning_; }

    /// Whether it hides when it stops, as at first.
    bool hidesWhenStopped() const { return hidesWhenStopped_; }
    void setHidesWhenStopped(bool hides);

    /// The spoke that is darkest now, counted clockwise from the top; each one counter-clockwise from it is
    /// fainter.
    int leadingSpoke() const;

    CGSize intrinsicContentSize() const override { return {side, side}; }
    bool isAnimating() const override;
    bool animatesForever() const override { return spinning_; }

private:
    UIColor color_;
    bool spinning_ = false;
    bool hidesWhenStopped_ = true;
    double startTime_ = 0;
};

} // namespace sela
