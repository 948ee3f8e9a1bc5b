#include "ui/AUIButton.h"

#include "platform/foundation/FatalError.h"
#include "platform/snapkit/ConstraintViewDSL.h"
#include "platform/uikit/UITapGestureRecognizer.h"

#include <memory>

namespace sela {

AUIButton::AUIButton(std::string_view name) : UIView(name) {
    titleLabel_.setTextAlignment(NSTextAlignment::center);
    for (UIView* content : {static_cast<UIView*>(&titleLabel_), static_cast<UIView*>(&imageView_)}) {
        addSubview(*content);
        content->snp().remakeConstraints([](ConstraintMaker& make) {
            make.size().equalToSuperview();
            make.center().equalToSuperview();
        });
        content->setHidden(true);
    }
    addGestureRecognizer(std::make_unique<UITapGestureRecognizer>(this, &AUIButton::onTapped));
    setUserInteractionEnabled(true);
    setAccessibilityRole(AccessibilityRole::button);
}

AUIButton::AUIButton(const CGRect& frame) : UIView(frame) {
    fatalError("Use of unimplemented initializer 'init(frame:)' for class 'AUIButton'");
}

AUIButton::AUIButton(const NSCoder& coder) : UIView(coder) {
    fatalError("init(coder:) has not been implemented");
}

UIColor AUIButton::tintColor() const {
    return imageView_.tintColor();
}

void AUIButton::setTintColor(const std::optional<UIColor>& color) {
    if (!color)
        return;
    titleLabel_.setTextColor(*color);
    imageView_.setTintColor(color);
}

void AUIButton::onTapped(UITapGestureRecognizer&) {
    // A copy, since a callback may install another one.
    if (const Callback callback = callback_)
        callback(*this);
}

} // namespace sela
