#include "platform/snapkit/ConstraintViewDSL.h"
#include "ui/UIScale.h"
#include "unlock/SelaShareExtensionAlbumsVc.h"

#include <cmath>

namespace sela {

void SelaShareExtensionAlbumsVc::buildViews() {
    const double scale = getUIScale(*this);
    card_.assemble(view(), scale);
    keypad_.assemble(card_.containerView(), scale, passcodeLength(),
                     {.titleLabel = card_.titleLabel(),
                      .viewAbove = card_.titleLabel(),
                      .backButtonWidth = std::ceil(46 * scale),
                      .indicatorOffset = std::round(28 * scale),
                      .keypadOffset = std::round(34 * scale)});
    keypad_.setActions(this, &SelaShareExtensionAlbumsVc::onKeyTouched,
                       &SelaShareExtensionAlbumsVc::onBackButtonTouched,
                       &SelaShareExtensionAlbumsVc::clearEntry);
    layoutTable();
    layoutLaunchMessage(scale);
}

void SelaShareExtensionAlbumsVc::layoutTable() {
    card_.containerView().addSubview(tableView_);
    tableView_.snp().makeConstraints([&](ConstraintMaker& make) {
        make.width().centerX().bottom().equalToSuperview();
        make.top().equalTo(card_.titleLabel().snp().bottom());
    });
}

void SelaShareExtensionAlbumsVc::layoutLaunchMessage(double scale) {
    launchMainAppLabel_.setFont(UIFont::systemFont(std::round(18 * scale)));
    launchMainAppLabel_.setTextColor(UIColor::named("AppText"));
    launchMainAppLabel_.setNumberOfLines(0);
    launchMainAppLabel_.setTextAlignment(NSTextAlignment::center);
    card_.containerView().addSubview(launchMainAppLabel_);
    launchMainAppLabel_.snp().makeConstraints([&](ConstraintMaker& make) {
        make.width().equalTo(std::round(220 * scale));
        make.height().center().equalToSuperview();
    });
}

} // namespace sela
