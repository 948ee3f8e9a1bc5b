#include "unlock/PasscodeCard.h"

#include "platform/snapkit/ConstraintViewDSL.h"

#include <cmath>

namespace sela {

PasscodeCard::PasscodeCard() {
    containerView_.setName("containerView");
    titleLabel_.setName("titleLabel");
}

void PasscodeCard::assemble(UIView& rootView, double scale) {
    containerView_.setBackgroundColor(UIColor::named("AppCard"));
    rootView.addSubview(containerView_);
    containerView_.snp().makeConstraints([&](ConstraintMaker& make) {
        make.width().equalTo(std::ceil(320 * scale));
        make.height().equalTo(std::ceil(390 * scale));
        make.center().equalToSuperview();
    });

    titleLabel_.setFont(UIFont::boldSystemFont(std::ceil(20 * scale)));
    titleLabel_.setTextColor(UIColor::named("AppTint"));
    titleLabel_.setTextAlignment(NSTextAlignment::center);
    containerView_.addSubview(titleLabel_);
    titleLabel_.snp().makeConstraints([&](ConstraintMaker& make) {
        make.width().centerX().top().equalToSuperview();
        make.height().equalTo(std::ceil(46 * scale));
    });
}

} // namespace sela
