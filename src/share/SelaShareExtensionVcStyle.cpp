#include "platform/foundation/Bundle.h"
#include "share/SelaShareExtensionVc.h"

namespace sela {

void SelaShareExtensionVc::styleCard() {
    titleLabel_.setText("Sela");
    titleLabel_.setFont(UIFont::boldSystemFont(20 * scale_));
    titleLabel_.setTextColor(UIColor::named("AppTint"));
    if (const std::optional<UIImage> disclosure = disclosureIcon_.image())
        disclosureIcon_.setImage(disclosure->withRenderingMode(UIImage::RenderingMode::alwaysTemplate)
                                     .imageFlippedForRightToLeftLayoutDirection());
    disclosureIcon_.setTintColor(UIColor::named("AppTextSecond"));
    for (UIImageView* const image : {&imageView1_, &imageView2_, &imageView3_}) {
        image->layer().setCornerRadius(whole(10));
        image->setClipsToBounds(true);
        image->setContentMode(UIView::ContentMode::scaleAspectFill);
    }
    for (UIView* const frame : {&imageView1Container_, &imageView2Container_, &imageView3Container_}) {
        frame->layer().setShadowOpacity(1);
        frame->layer().setShadowColor(UIColor::black().withAlpha(0.5));
        frame->layer().setShadowOffset({0, 0});
        frame->layer().setShadowRadius(2);
    }
    documentSheet_.setHidden(true);
    containerView_.setBackgroundColor(UIColor::named("AppCard"));
    containerView_.layer().setCornerRadius(whole(13));
    containerView_.setClipsToBounds(true);
}

void SelaShareExtensionVc::styleButtons() {
    const Bundle& bundle = Bundle::main();
    const UIFont font = UIFont::systemFont(whole(16));
    const double halfHeight = whole(40) / 2;

    cancelButton_.setTitleFont(font);
    cancelButton_.setTitle(bundle.localizedString("Cancel"));
    cancelButton_.setTitleColor(UIColor::named("AlertButtonDefault"));
    cancelButton_.layer().setBorderWidth(1);
    cancelButton_.layer().setBorderColor(UIColor::named("AlertButtonDefault"));
    cancelButton_.layer().setCornerRadius(halfHeight);
    cancelButton_.addKeyCommand(UIKeyCommand::inputEscape);
    cancelButton_.addTarget(this, &SelaShareExtensionVc::cancelButtonTapped, UIControl::Event::touchUpInside);

    addButton_.setTitleFont(font);
    addButton_.setTitle(bundle.localizedString("Add"));
    addButton_.setTitleColor(UIColor::named("TintButtonText"));
    addButton_.layer().setCornerRadius(halfHeight);
    addButton_.setClipsToBounds(true);
    addButton_.addKeyCommand(UIKeyCommand::inputReturn);
    addButton_.addTarget(this, &SelaShareExtensionVc::onAddButtonTouched, UIControl::Event::touchUpInside);

    albumButton_.setContentHorizontalAlignment(UIButton::ContentHorizontalAlignment::leading);
    albumButton_.titleLabel().setAdjustsFontSizeToFitWidth(true);
    albumButton_.titleLabel().setMinimumScaleFactor(0.8);
    albumButton_.setAccessibilityLabel(bundle.localizedString("Pick Album"));
    albumButton_.addTarget(this, &SelaShareExtensionVc::albumButtonTouched, UIControl::Event::touchUpInside);
}

void SelaShareExtensionVc::styleResult() {
    resultLabel_.setFont(UIFont::systemFont(whole(16)));
    resultLabel_.setText(Bundle::main().localizedString("Added!"));
    resultLabel_.setTextColor(UIColor::named("AppText"));
    resultLabel_.setTextAlignment(NSTextAlignment::center);
    resultView_.setTransform(CGAffineTransform::scale(0, 0));
    resultView_.layer().setCornerRadius(whole(13));
    resultView_.setClipsToBounds(true);
    resultView_.setBackgroundColor(UIColor::named("AppCard"));
    resultIcon_.setHidden(true);
    activityIndicator_.setHidden(true);
    activityIndicator_.setAccessibilityLabel(Bundle::main().localizedString("Adding..."));
}

} // namespace sela
