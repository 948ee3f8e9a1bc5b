#include "unlock/PasscodeCard.h"

#include "platform/snapkit/ConstraintViewDSL.h"

#include <algorithm>
#include <cmath>

namespace sela {

void PasscodeCard::assemble(UIView& rootView, double scale) {
    containerView_.setBackgroundColor(UIColor::named("AppCard"));
    rootView.addSubview(containerView_);
    containerView_.snp().makeConstraints([&](ConstraintMaker& make) {
        make.width().equalTo(std::ceil(320 * scale));
        make.height().equalTo(std::ceil(390 * scale));
        make.center().equalToSuperview();
    });

    scale_ = scale;
    titleLabel_.setFont(UIFont::boldSystemFont(std::ceil(20 * scale)));
    titleLabel_.setTextColor(UIColor::named("AppTint"));
    titleLabel_.setTextAlignment(NSTextAlignment::center);
    containerView_.addSubview(titleLabel_);
    titleLabel_.snp().makeConstraints([&](ConstraintMaker& make) {
        make.width().centerX().top().equalToSuperview();
        make.height().equalTo(std::ceil(46 * scale));
    });
}

void PasscodeCard::setTitle(const std::string& title) {
    const UIFont font = UIFont::boldSystemFont(std::ceil(20 * scale_));
    titleLabel_.setFont(font);
    titleLabel_.setText(title);
    // The wider of the two screens' back buttons, on both sides, since the title is centred on the card.
    const double room = std::ceil(320 * scale_) - 2 * std::max(60.0, std::ceil(46 * scale_));
    const double width = titleLabel_.intrinsicContentSize().width;
    if (width > room)
        titleLabel_.setFont(font.withSize(font.size() * room / width));
}

} // namespace sela
