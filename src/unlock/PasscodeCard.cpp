#include "unlock/PasscodeCard.h"

#include "platform/foundation/Bundle.h"
#include "platform/snapkit/ConstraintViewDSL.h"
#include "unlock/PasscodeKeypad.h"

#include <algorithm>
#include <cmath>

namespace sela {

namespace {

/// Between the back button's arrow and the title, in points.
constexpr double titleGap = 6;

/// The smallest font of the title, in points, where the back button leaves it no room.
constexpr double smallestTitle = 1;

} // namespace

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

void PasscodeCard::setTitle(std::string_view key) {
    const Bundle& bundle = Bundle::main();
    UIFont font = UIFont::boldSystemFont(std::ceil(20 * scale_));
    // On both sides, since the title is centred on the card.
    const double room = std::ceil(320 * scale_) - 2 * (PasscodeKeypad::backArrowEnd() + titleGap);
    for (const char* const title : {"Input Passcode", "Pick Album"}) {
        titleLabel_.setFont(font);
        titleLabel_.setText(bundle.localizedString(title));
        if (const double width = titleLabel_.intrinsicContentSize().width; width > room)
            font = font.withSize(std::max(smallestTitle, font.size() * room / width));
    }
    titleLabel_.setFont(font);
    titleLabel_.setText(bundle.localizedString(key));
}

} // namespace sela
