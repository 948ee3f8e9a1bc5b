#include "unlock/SelaSharedAlbumPassCheck.h"

#include "platform/foundation/FatalError.h"
#include "platform/foundation/UTF8.h"
#include "platform/snapkit/ConstraintViewDSL.h"
#include "platform/uikit/UINavigationController.h"
#include "store/SharedAlbumManager.h"
#include "ui/UIScale.h"

#include <cmath>
#include <memory>
#include <utility>

namespace sela {

SelaSharedAlbumPassCheck::SelaSharedAlbumPassCheck(Secret checkPass, const std::string& subtitle)
    : checkPass_(std::move(checkPass)) {
    subTitleLabel_.setText(subtitle);
}

SelaSharedAlbumPassCheck::SelaSharedAlbumPassCheck(const std::optional<std::string>&) {
    fatalError("Use of unimplemented initializer 'init(nibName:bundle:)' for class "
               "'SelaSharedAlbumPassCheck'");
}

SelaSharedAlbumPassCheck::SelaSharedAlbumPassCheck(const NSCoder& coder) : CommonUIViewController(coder) {
    fatalError("init(coder:) has not been implemented");
}

void SelaSharedAlbumPassCheck::viewDidLoad() {
    CommonUIViewController::viewDidLoad();
    const double scale = getUIScale(*this);
    card_.assemble(view(), scale);
    card_.titleLabel().setBackgroundColor(UIColor::named("AppCard"));
    layoutSubTitle(scale);
    // The number of dots is that of the vault passcode, so that the length of the album's password is not
    // revealed.
    keypad_.assemble(card_.containerView(), scale,
                     characterCount(SharedAlbumManager::sharedPassword().value_or(Secret()).exposed()),
                     {.titleLabel = card_.titleLabel(),
                      .viewAbove = subTitleLabel_,
                      .backButtonWidth = 60,
                      .indicatorOffset = std::round(23 * scale),
                      .keypadOffset = std::round(29 * scale)});
    keypad_.setActions(this, &SelaSharedAlbumPassCheck::onKeyTouched,
                       &SelaSharedAlbumPassCheck::onBackButtonTouched, &SelaSharedAlbumPassCheck::clearEntry);
    refresh();
}

void SelaSharedAlbumPassCheck::layoutSubTitle(double scale) {
    subTitleLabel_.setFont(UIFont::boldSystemFont(std::ceil(18 * scale)));
    subTitleLabel_.setTextAlignment(NSTextAlignment::center);
    subTitleLabel_.setBackgroundColor(UIColor::named("AppCard"));
    card_.containerView().addSubview(subTitleLabel_);
    subTitleLabel_.snp().makeConstraints([&](ConstraintMaker& make) {
        make.width().centerX().equalToSuperview();
        make.top().equalTo(card_.titleLabel().snp().bottom()).offset(5 * scale);
        make.height().equalTo(std::ceil(30 * scale));
    });
}

void SelaSharedAlbumPassCheck::refresh() {
    card_.setTitle("Input Passcode");
    keypad_.showEntry(currentPassword_.size());
}

void SelaSharedAlbumPassCheck::onKeyTouched(UIButton& button) {
    if (keypad_.isShaking())
        return;
    const std::size_t length = characterCount(checkPass_.exposed());
    if (currentPassword_.size() < length)
        currentPassword_.append(static_cast<char>('0' + button.tag()));
    if (currentPassword_ == checkPass_) {
        finish(true);
        return;
    }
    refresh();
    if (length < 1 || currentPassword_.size() < length)
        return;
    keypad_.shake(weak_from_this(), [this] { clearEntry(); });
}

void SelaSharedAlbumPassCheck::clearEntry() {
    currentPassword_.clear();
    refresh();
}

void SelaSharedAlbumPassCheck::onBackButtonTouched(UIButton&) {
    finish(false);
}

void SelaSharedAlbumPassCheck::finish(bool unlocked) {
    UINavigationController* const navigation = navigationController();
    if (!navigation)
        return;
    const std::shared_ptr<UIViewController> self = shared_from_this();
    navigation->popViewController(true);
    report(unlocked);
}

} // namespace sela
