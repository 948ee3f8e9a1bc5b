#include "ui/SelaShareExtensionAlbumCell.h"

#include "platform/media/UIImage.h"
#include "platform/snapkit/ConstraintViewDSL.h"

namespace sela {

SelaShareExtensionAlbumCell::SelaShareExtensionAlbumCell(Style style,
                                                         const std::optional<std::string>& reuseIdentifier)
    : UITableViewCell(style, reuseIdentifier) {
    contentView().addSubview(thumbnailView_);
    contentView().addSubview(titleLabel_);
    contentView().addSubview(showChildButton_);
    contentView().addSubview(lockIcon_);
    layoutThumbnailOfParent();
    layoutTitleWithShowChildButton();
    layoutBadgeAndButton();
    applyLooks();
    showArrow();
}

SelaShareExtensionAlbumCell::SelaShareExtensionAlbumCell(const NSCoder& coder) : UITableViewCell(coder) {}

void SelaShareExtensionAlbumCell::layoutTitleWithShowChildButton() {
    layoutTitle(showChildButton_.snp().leading());
}

void SelaShareExtensionAlbumCell::layoutTitleWithoutShowChildButton() {
    layoutTitle(contentView().snp().trailing());
}

void SelaShareExtensionAlbumCell::layoutThumbnailOfParent() {
    layoutThumbnail(30);
}

void SelaShareExtensionAlbumCell::layoutThumbnailOfChild() {
    layoutThumbnail(48);
}

void SelaShareExtensionAlbumCell::layoutTitle(const ConstraintItem& end) {
    titleLabel_.snp().remakeConstraints([&](ConstraintMaker& make) {
        make.leading().equalTo(thumbnailView_.snp().trailing()).offset(24);
        make.trailing().equalTo(end);
        make.centerY().height().equalToSuperview();
    });
}

void SelaShareExtensionAlbumCell::layoutThumbnail(double indentation) {
    thumbnailView_.snp().remakeConstraints([&](ConstraintMaker& make) {
        make.size().equalTo(CGSize{40, 40});
        make.centerY().equalToSuperview();
        make.leading().equalToSuperview().offset(indentation);
    });
}

void SelaShareExtensionAlbumCell::layoutBadgeAndButton() {
    showChildButton_.snp().makeConstraints([&](ConstraintMaker& make) {
        make.top().bottom().trailing().equalToSuperview();
        make.width().equalTo(showChildButton_.snp().height());
    });
    lockIcon_.snp().makeConstraints(
        [&](ConstraintMaker& make) { make.left().right().top().bottom().equalTo(thumbnailView_); });
}

void SelaShareExtensionAlbumCell::applyLooks() {
    titleLabel_.setFont(UIFont::systemFont(14));
    titleLabel_.setTextColor(UIColor::named("AppText"));
    for (UIImageView* square : {&thumbnailView_, &lockIcon_}) {
        square->setContentMode(ContentMode::scaleAspectFill);
        square->layer().setCornerRadius(3);
        square->layer().setMasksToBounds(true);
    }
    contentView().setBackgroundColor(UIColor::named("AppCard"));
}

void SelaShareExtensionAlbumCell::showArrow() {
    UIImageView& arrow = showChildButton_.imageView();
    if (const auto image = UIImage::named("arrow_down_circle")) {
        arrow.setHidden(false);
        arrow.setImage(image->withRenderingMode(UIImage::RenderingMode::alwaysTemplate));
    } else {
        arrow.setHidden(true);
    }
    // The two widths contradict each other: both are asked for, and the first one holds.
    arrow.snp().remakeConstraints([&](ConstraintMaker& make) {
        make.center().equalToSuperview();
        make.size().equalTo(CGSize{20, 20});
        make.height().equalTo(20);
        make.width().equalTo(18);
    });
    showChildButton_.setTintColor(UIColor::named("AppTint"));
}

} // namespace sela
