#pragma once

#include "platform/uikit/UIButton.h"
#include "platform/uikit/UIView.h"
#include "platform/uikit/UIViewController.h"

#include <array>
#include <cstddef>
#include <functional>
#include <memory>

namespace sela {

/// The views by which a screen asks for a passcode: ten digit keys, a row of dots that shows how many digits
/// are entered, and the button that leaves the screen. The screen holds the entry and decides what a digit
/// does; there is no delete key. Owned by its screen; main thread only.
class PasscodeKeypad {
public:
    /// Where the parts are placed on the screen's card, in points of the screen.
    struct Placement {
        UIView& titleLabel; ///< the back button stands in its strip
        UIView& viewAbove;  ///< the view above the dots
        double backButtonWidth = 0;
        double indicatorOffset = 0; ///< from the bottom of `viewAbove` to the dots
        double keypadOffset = 0;    ///< from the bottom of the dots to the keys
    };

    /// How far the back button's arrow reaches into the card, in points.
    static double backArrowEnd();

    /// Seconds that a failure is shown.
    static constexpr double shakeDuration = 0.6;

    /// Adds back button, dots and keys, in this order, to the screen's card and lays them out by the screen's
    /// factor `scale`. `passcodeLength` is the number of characters of the vault passcode, 0 without one: the
    /// row has six dots when it is 6 and four otherwise, and is as wide as that many dots would be.
    void assemble(UIView& card, double scale, std::size_t passcodeLength, const Placement& placement);

    /// Lays the dots out again for this many characters, when their number was unknown before.
    void setPasscodeLength(std::size_t passcodeLength);

    /// Calls `onKeyTouched` of `screen`, which owns the keypad, with the tapped key, whose tag is its digit,
    /// and `onBackButtonTouched` with the back button. The key Backspace calls `clearEntry`.
    template<class Screen>
    void setActions(Screen* screen, void (Screen::*onKeyTouched)(UIButton&),
                    void (Screen::*onBackButtonTouched)(UIButton&), void (Screen::*clearEntry)()) {
        for (UIButton& button : buttons_)
            button.addTarget(screen, onKeyTouched, UIControl::Event::touchUpInside);
        backButton_.addTarget(screen, onBackButtonTouched, UIControl::Event::touchUpInside);
        keypadView_.addKeyCommand({std::string(UIKeyCommand::inputDelete), [this, screen, clearEntry] {
                                       if (!isShaking_)
                                           (screen->*clearEntry)();
                                   }});
    }

    /// Shows or hides dots and keys; the back button stays.
    void setHidden(bool hidden);

    /// Shows this many of the dots.
    void showEntry(std::size_t digits);

    /// Shows a wrong entry by moving the dots from side to side. Then `completion` is called, unless
    /// `screen`, which owns the keypad, is destroyed by then.
    void shake(std::weak_ptr<UIViewController> screen, std::function<void()> completion);

    /// Whether a wrong entry is being shown; the screen ignores its keys meanwhile.
    bool isShaking() const { return isShaking_; }

private:
    void layoutBackButton(const Placement& placement);
    void layoutKeys(double scale, const Placement& placement);
    void applyLooks(double scale);

    UIView indicatorContainer_{"indicatorContainer"};
    std::array<UIView, 6> indicators_{UIView("indicator1"), UIView("indicator2"), UIView("indicator3"),
                                      UIView("indicator4"), UIView("indicator5"), UIView("indicator6")};
    UIView keypadView_{"keypadView"};
    std::array<UIButton, 10> buttons_{UIButton("button0"), UIButton("button1"), UIButton("button2"),
                                      UIButton("button3"), UIButton("button4"), UIButton("button5"),
                                      UIButton("button6"), UIButton("button7"), UIButton("button8"),
                                      UIButton("button9")}; ///< by their digits
    UIButton backButton_{"backButton"};
    double scale_ = 1;
    UIView* viewAbove_ = nullptr; ///< above the dots
    double indicatorOffset_ = 0;
    bool isShaking_ = false;
};

} // namespace sela
