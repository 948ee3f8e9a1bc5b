#include "ui/SelaShareExtensionTopBar.h"

#include "platform/snapkit/ConstraintViewDSL.h"

namespace sela {

SelaShareExtensionTopBar::SelaShareExtensionTopBar(const CGRect& frame) : UIView(frame) {
    addSubview(leftButton_);
    addSubview(rightButton_);
    addSubview(titleLabel_);
    applyLooks();
    makeConstraints();
    leftButton_.addTarget(this, &SelaShareExtensionTopBar::onLeftButtonTouched,
                          UIControl::Event::touchUpInside);
    rightButton_.addTarget(this, &SelaShareExtensionTopBar::onRightButtonTouched,
                           UIControl::Event::touchUpInside);
}

SelaShareExtensionTopBar::SelaShareExtensionTopBar(const NSCoder& coder) : UIView(coder) {}

void SelaShareExtensionTopBar::onLeftButtonTouched(UIButton&) {
    if (const auto delegate = delegate_.lock())
        delegate->topBarLeftButtonTouched();
}

void SelaShareExtensionTopBar::onRightButtonTouched(UIButton&) {
    if (const auto delegate = delegate_.lock())
        delegate->topBarRightButtonTouched();
}

void SelaShareExtensionTopBar::applyLooks() {
    const UIColor darkGrey(0.2, 0.2, 0.2, 1.0);
    leftButton_.setTintColor(darkGrey);
    leftButton_.titleLabel().setFont(UIFont::systemFont(16));
    leftButton_.setContentEdgeInsets({0, 16, 0, 0});
    leftButton_.setContentHorizontalAlignment(UIButton::ContentHorizontalAlignment::left);

    rightButton_.setTintColor(darkGrey);
    rightButton_.titleLabel().setFont(UIFont::systemFont(16));
    rightButton_.setContentEdgeInsets({0, 0, 0, 16});
    rightButton_.setContentHorizontalAlignment(UIButton::ContentHorizontalAlignment::right);

    titleLabel_.setTextColor(darkGrey);
    titleLabel_.setFont(UIFont::systemFont(16, UIFont::Weight::semibold));
    titleLabel_.setTextAlignment(NSTextAlignment::center);
}

void SelaShareExtensionTopBar::makeConstraints() {
    constexpr double buttonWidth = 80;
    leftButton_.snp().makeConstraints([&](ConstraintMaker& make) {
        make.width().equalTo(buttonWidth);
        make.height().left().centerY().equalToSuperview();
    });
    rightButton_.snp().makeConstraints([&](ConstraintMaker& make) {
        make.width().equalTo(buttonWidth);
        make.height().right().centerY().equalToSuperview();
    });
    titleLabel_.snp().makeConstraints([&](ConstraintMaker& make) {
        make.left().equalTo(leftButton_.snp().right());
        make.right().equalTo(rightButton_.snp().left());
        make.height().centerY().equalToSuperview();
    });
}

} // namespace sela
