#include "unlock/PasscodeKeypad.h"

#include "platform/foundation/Bundle.h"
#include "platform/foundation/DispatchQueue.h"
#include "platform/snapkit/ConstraintViewDSL.h"

#include <cmath>
#include <string>
#include <utility>

namespace sela {

namespace {

/// From the card's edge to the back button's arrow, in points.
constexpr double backButtonInset = 24;

} // namespace

void PasscodeKeypad::assemble(UIView& card, double scale, std::size_t passcodeLength,
                              const Placement& placement) {
    card.addSubview(backButton_);
    card.addSubview(indicatorContainer_);
    card.addSubview(keypadView_);
    for (UIButton& button : buttons_)
        keypadView_.addSubview(button);
    layoutBackButton(placement);
    scale_ = scale;
    viewAbove_ = &placement.viewAbove;
    indicatorOffset_ = placement.indicatorOffset;
    setPasscodeLength(passcodeLength);
    layoutKeys(scale, placement);
    applyLooks(scale);
}

void PasscodeKeypad::layoutBackButton(const Placement& placement) {
    backButton_.snp().makeConstraints([&](ConstraintMaker& make) {
        make.leading().equalToSuperview();
        make.width().equalTo(placement.backButtonWidth);
        make.height().centerY().equalTo(placement.titleLabel);
    });
}

void PasscodeKeypad::setPasscodeLength(std::size_t passcodeLength) {
    const double side = std::round(15 * scale_);
    const double gap = std::round((passcodeLength == 6 ? 18 : 24) * scale_);
    const auto count = static_cast<double>(passcodeLength);
    for (std::size_t i = 0; i < (passcodeLength == 6 ? 6u : 4u); ++i)
        if (!indicators_[i].superview())
            indicatorContainer_.addSubview(indicators_[i]);
    indicatorContainer_.snp().remakeConstraints([&](ConstraintMaker& make) {
        make.height().equalTo(side);
        // Without a passcode the row's width is negative by one gap; it is not shown then.
        make.width().equalTo(side * count + gap * (count - 1));
        make.centerX().equalToSuperview();
        make.top().equalTo(viewAbove_->snp().bottom()).offset(indicatorOffset_);
    });
    UIView* previous = nullptr;
    for (UIView& indicator : indicators_) {
        indicator.layer().setCornerRadius(side / 2);
        if (!indicator.superview())
            continue;
        indicator.snp().remakeConstraints([&](ConstraintMaker& make) {
            make.size().equalTo(CGSize{side, side});
            make.centerY().equalToSuperview();
            if (previous)
                make.left().equalTo(previous->snp().right()).offset(gap);
            else
                make.left().equalToSuperview();
        });
        previous = &indicator;
    }
}

void PasscodeKeypad::layoutKeys(double scale, const Placement& placement) {
    const double keypadHeight = std::round(228 * scale);
    const double keyHeight = std::round(44 * scale);
    const double rowGap = std::round((keypadHeight - 4 * keyHeight) / 3);
    keypadView_.snp().makeConstraints([&](ConstraintMaker& make) {
        make.width().equalTo(std::round(240 * scale));
        make.height().equalTo(keypadHeight);
        make.centerX().equalToSuperview();
        make.top().equalTo(indicatorContainer_.snp().bottom()).offset(placement.keypadOffset);
    });
    for (std::size_t digit = 0; digit < buttons_.size(); ++digit) {
        buttons_[digit].snp().makeConstraints([&](ConstraintMaker& make) {
            make.width().equalTo(std::round(60 * scale));
            make.height().equalTo(keyHeight);
            if (digit == 0) {
                make.centerX().equalToSuperview();
                make.top().equalTo(buttons_[8].snp().bottom()).offset(rowGap);
                return;
            }
            const std::size_t column = (digit - 1) % 3;
            if (column == 0)
                make.left().equalToSuperview();
            else if (column == 1)
                make.centerX().equalToSuperview();
            else
                make.right().equalToSuperview();
            if (digit <= 3)
                make.top().equalToSuperview();
            else if (column == 0)
                make.top().equalTo(buttons_[digit - 3].snp().bottom()).offset(rowGap);
            else
                make.centerY().equalTo(buttons_[digit - column]);
        });
    }
}

double PasscodeKeypad::backArrowEnd() {
    const std::optional<UIImage> arrow = UIImage::named("Back");
    return backButtonInset + (arrow ? arrow->width() : 0);
}

void PasscodeKeypad::applyLooks(double scale) {
    const bool fromRight =
        backButton_.effectiveUserInterfaceLayoutDirection() == UIUserInterfaceLayoutDirection::rightToLeft;
    if (const std::optional<UIImage> back = UIImage::named("Back"))
        backButton_.setImage(back->imageFlippedForRightToLeftLayoutDirection());
    backButton_.setContentEdgeInsets(
        {0, fromRight ? 0 : backButtonInset, 0, fromRight ? backButtonInset : 0});
    backButton_.setContentHorizontalAlignment(UIButton::ContentHorizontalAlignment::leading);
    backButton_.setTintColor(UIColor::named("AppTextSecond"));
    backButton_.setAccessibilityLabel(Bundle::main().localizedString("Back"));
    backButton_.addKeyCommand(UIKeyCommand::inputEscape);

    for (UIView& indicator : indicators_)
        indicator.setBackgroundColor(UIColor::named("AppText"));
    indicatorContainer_.setAccessibilityRole(AccessibilityRole::secureTextField);
    indicatorContainer_.setAccessibilityLabel(Bundle::main().localizedString("Digits entered"));

    for (std::size_t digit = 0; digit < buttons_.size(); ++digit) {
        UIButton& button = buttons_[digit];
        button.setTitleFont(UIFont::named("Roboto-Light", std::round(28 * scale)));
        button.setTitle(std::to_string(digit));
        button.setTitleColor(UIColor::named("AppText"));
        button.setTag(static_cast<int>(digit));
        button.setAccessibilityRole(AccessibilityRole::keyboardKey);
        button.addKeyCommand(button.title());
    }
}

void PasscodeKeypad::setHidden(bool hidden) {
    keypadView_.setHidden(hidden);
    indicatorContainer_.setHidden(hidden);
}

void PasscodeKeypad::showEntry(std::size_t digits) {
    for (std::size_t i = 0; i < indicators_.size(); ++i)
        indicators_[i].setHidden(digits < i + 1);
    indicatorContainer_.setAccessibilityValue(std::to_string(digits));
}

void PasscodeKeypad::shake(std::weak_ptr<UIViewController> screen, std::function<void()> completion) {
    isShaking_ = true;
    CAKeyframeAnimation animation("transform.translation.x");
    animation.timingFunction = CAMediaTimingFunction::linear();
    animation.duration = shakeDuration;
    animation.values = {-20, 20, -15, 15, -10, 10, -5, 5, 0};
    indicatorContainer_.layer().add(animation, "shake");
    DispatchQueue::main().asyncAfter(shakeDuration,
                                     [this, screen = std::move(screen), completion = std::move(completion)] {
                                         const std::shared_ptr<UIViewController> alive = screen.lock();
                                         if (!alive)
                                             return;
                                         isShaking_ = false;
                                         completion();
                                     });
}

} // namespace sela
