#include "platform/snapkit/ConstraintViewDSL.h"
#include "platform/uikit/UIActivityIndicatorView.h"
#include "share/SelaShareExtensionVc.h"

namespace sela {

namespace {

/// How far each thumbnail behind the front one peeks out above the one before it, in design points.
constexpr double peek = 7;

struct Stack {
    double height;
    double topOffset;
};

/// The pile of thumbnails in design points, by the number of attachments.
Stack stackFor(std::int64_t itemsCount) {
    if (itemsCount >= 3)
        return {142, 30};
    if (itemsCount == 2)
        return {135, 34};
    return {128, 37};
}

} // namespace

void SelaShareExtensionVc::buildTree() {
    view().addSubview(resultView_);
    resultView_.addSubview(resultIcon_);
    resultView_.addSubview(resultLabel_);
    resultView_.addSubview(activityIndicator_);
    view().addSubview(containerView_);
    for (UIView* const part : {static_cast<UIView*>(&titleLabel_), static_cast<UIView*>(&albumButton_),
                               static_cast<UIView*>(&disclosureIcon_), &imageViewContainer_,
                               static_cast<UIView*>(&cancelButton_), static_cast<UIView*>(&addButton_)})
        containerView_.addSubview(*part);
    imageViewContainer_.addSubview(documentSheet_);
    // The first thumbnail comes last and lies on top.
    imageViewContainer_.addSubview(imageView3Container_);
    imageViewContainer_.addSubview(imageView2Container_);
    imageViewContainer_.addSubview(imageView1Container_);
    imageView1Container_.addSubview(imageView1_);
    imageView2Container_.addSubview(imageView2_);
    imageView3Container_.addSubview(imageView3_);
}

void SelaShareExtensionVc::layoutPanels() {
    containerView_.snp().makeConstraints([&](ConstraintMaker& make) {
        make.size().equalTo(CGSize{whole(320), whole(390)});
        make.center().equalToSuperview();
    });
    resultView_.snp().makeConstraints([&](ConstraintMaker& make) {
        make.size().equalTo(CGSize{whole(180), whole(150)});
        make.center().equalToSuperview();
    });
    resultIcon_.snp().makeConstraints([&](ConstraintMaker& make) {
        make.size().equalTo(CGSize{whole(56), whole(56)});
        make.centerX().equalToSuperview();
        make.top().equalToSuperview().offset(whole(28));
    });
    activityIndicator_.snp().makeConstraints(
        [&](ConstraintMaker& make) { make.center().equalTo(resultIcon_); });
    activityIndicator_.setTransform(CGAffineTransform::scale(whole(44) / UIActivityIndicatorView::side,
                                                             whole(44) / UIActivityIndicatorView::side));
    resultLabel_.snp().makeConstraints([&](ConstraintMaker& make) {
        make.leading().trailing().equalToSuperview().inset(whole(12));
        make.top().equalTo(resultIcon_.snp().bottom()).offset(whole(14));
        make.height().equalTo(whole(24));
    });
}

void SelaShareExtensionVc::layoutCard() {
    titleLabel_.snp().makeConstraints([&](ConstraintMaker& make) {
        make.leading().equalToSuperview().offset(whole(24));
        make.trailing().equalToSuperview();
        make.top().equalToSuperview();
        make.height().equalTo(whole(46));
    });
    // The line is 44 points high and reaches from edge to edge, under the arrow, so that it is easy to hit.
    const double textInset = whole(24);
    const double arrowRoom = whole(24) + whole(8) + whole(8);
    const bool fromRight =
        view().effectiveUserInterfaceLayoutDirection() == UIUserInterfaceLayoutDirection::rightToLeft;
    albumButton_.setContentEdgeInsets(
        {.left = fromRight ? arrowRoom : textInset, .right = fromRight ? textInset : arrowRoom});
    albumButton_.snp().makeConstraints([&](ConstraintMaker& make) {
        make.leading().trailing().equalToSuperview();
        make.top().equalTo(titleLabel_.snp().bottom());
        make.height().equalTo(whole(44));
    });
    disclosureIcon_.snp().makeConstraints([&](ConstraintMaker& make) {
        make.size().equalTo(CGSize{whole(8), whole(13)});
        make.centerY().equalTo(albumButton_);
        make.trailing().equalToSuperview().offset(-whole(24));
    });
    const double buttonEdge = whole(40);
    for (UIButton* const button : {&cancelButton_, &addButton_})
        button->snp().makeConstraints([&](ConstraintMaker& make) {
            make.size().equalTo(CGSize{whole(110), whole(40)});
            make.bottom().equalToSuperview().offset(-whole(28));
        });
    cancelButton_.snp().makeConstraints(
        [&](ConstraintMaker& make) { make.leading().equalToSuperview().offset(buttonEdge); });
    addButton_.snp().makeConstraints(
        [&](ConstraintMaker& make) { make.trailing().equalToSuperview().offset(-buttonEdge); });
}

void SelaShareExtensionVc::layoutStack() {
    const Stack stack = stackFor(intake_->itemsCount());
    imageViewContainer_.snp().remakeConstraints([&](ConstraintMaker& make) {
        make.size().equalTo(CGSize{whole(178), whole(stack.height)});
        make.centerX().equalToSuperview();
        make.top().equalTo(albumButton_.snp().bottom()).offset(whole(stack.topOffset));
    });
}

void SelaShareExtensionVc::layoutThumbnails() {
    layoutStack();
    documentSheet_.snp().makeConstraints([&](ConstraintMaker& make) {
        make.size().equalTo(
            CGSize{whole(DocumentSheet::designSize.width), whole(DocumentSheet::designSize.height)});
        make.center().equalTo(imageView1Container_);
    });
    imageView1Container_.snp().makeConstraints([&](ConstraintMaker& make) {
        make.size().equalTo(CGSize{whole(178), whole(128)});
        make.bottom().centerX().equalToSuperview();
    });
    imageView2Container_.snp().makeConstraints([&](ConstraintMaker& make) {
        make.size().equalTo(CGSize{whole(142), whole(100)});
        make.centerX().equalToSuperview();
        make.top().equalTo(imageView1Container_).offset(-whole(peek));
    });
    imageView3Container_.snp().makeConstraints([&](ConstraintMaker& make) {
        make.size().equalTo(CGSize{whole(113), whole(100)});
        make.centerX().equalToSuperview();
        make.top().equalTo(imageView2Container_).offset(-whole(peek));
    });
    for (UIImageView* const image : {&imageView1_, &imageView2_, &imageView3_})
        image->snp().makeConstraints([&](ConstraintMaker& make) { make.size().center().equalToSuperview(); });
}

} // namespace sela
