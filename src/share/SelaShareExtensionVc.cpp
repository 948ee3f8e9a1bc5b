#include "share/SelaShareExtensionVc.h"

#include "platform/foundation/Bundle.h"
#include "platform/foundation/DispatchQueue.h"
#include "platform/foundation/FatalError.h"
#include "platform/uikit/NSAttributedString.h"
#include "platform/uikit/UIAccessibility.h"
#include "platform/uikit/UINavigationController.h"
#include "platform/uikit/UIScreen.h"
#include "share/RequestEnd.h"
#include "ui/UIScale.h"
#include "unlock/SelaShareExtensionAlbumsVc.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace sela {

namespace {

constexpr double slideAwaySeconds = 0.2;
constexpr double growSeconds = 0.3;
constexpr double doneSeconds = 1.5;

/// The width of the front thumbnail in design points; it and the other frames are less high than that.
constexpr double frontFrameWidth = 178;

/// A placeholder for the album's name until the rest of the title is filled: U+FFFC, which no translation
/// contains.
constexpr std::string_view albumStandIn = "\xEF\xBF\xBC";

std::string localized(std::string_view key) {
    return Bundle::main().localizedString(key);
}

/// The album's path as shown in the card's line. Where that is too long, the parent is shortened: the child
/// is the album that was chosen.
NSAttributedString albumText(const std::vector<std::string>& path,
                             const NSAttributedString::Attributes& look) {
    NSAttributedString::Attributes parent = look;
    parent.givesWay = path.size() == 2;
    NSAttributedString text(path.empty() ? std::string() : path.front(), parent);
    if (path.size() == 2)
        text.append({"/" + path.back(), look});
    return text;
}

/// A delayed step's weak reference to the screen.
std::weak_ptr<SelaShareExtensionVc> weakReference(SelaShareExtensionVc& screen) {
    return std::static_pointer_cast<SelaShareExtensionVc>(screen.shared_from_this());
}

} // namespace

SelaShareExtensionVc::SelaShareExtensionVc() : intake_(std::make_shared<AttachmentIntake>()) {}

SelaShareExtensionVc::SelaShareExtensionVc(const NSCoder&) {
    fatalError("init(coder:) has not been implemented");
}

void SelaShareExtensionVc::viewDidLoad() {
    UIViewController::viewDidLoad();
    scale_ = getUIScale(*this);
    const double frontPixels = frontFrameWidth * scale_ * UIScreen::main().scale();
    intake_->begin(extensionContext(), PictureBounds::filling(static_cast<int>(std::ceil(frontPixels))));
    buildTree();
    layoutPanels();
    layoutCard();
    layoutThumbnails();
    styleCard();
    styleButtons();
    styleResult();
    loadThumbnails();
    updateTitle();
}

void SelaShareExtensionVc::viewDidLayoutSubviews() {
    UIViewController::viewDidLayoutSubviews();
    addButton_.setBackgroundColor(UIColor::named("AppTint"));
}

double SelaShareExtensionVc::whole(double designLength) const {
    return std::trunc(designLength * scale_);
}

void SelaShareExtensionVc::loadThumbnails() {
    thumbnailsShown_ = false;
    intake_->loadThumbnails([weak = weakReference(*this), count = intake_->itemsCount()] {
        const auto self = weak.lock();
        if (!self)
            return;
        self->showThumbnails();
        // The walk may have ended before attachments were added.
        if (self->intake_->itemsCount() > count)
            self->loadThumbnails();
    });
}

bool SelaShareExtensionVc::append(const NSExtensionItem::Attachments& attachments) {
    if (saveRun().hasBegun() || !intake_->append(attachments))
        return false;
    layoutStack();
    updateTitle();
    UIAccessibility::postAnnouncement(albumButton_.accessibilityValue());
    if (thumbnailsShown_)
        loadThumbnails();
    return true;
}

void SelaShareExtensionVc::showThumbnails() {
    const std::vector<UIImage>& thumbnails = intake_->thumbnails();
    UIImageView* const frames[] = {&imageView1_, &imageView2_, &imageView3_};
    for (std::size_t i = 0; i < std::min(thumbnails.size(), std::size(frames)); ++i) {
        frames[i]->setImage(thumbnails[i]);
        // Else the frame's own shadow would show through a picture that is partly transparent.
        frames[i]->setBackgroundColor(UIColor::named("AppCard"));
    }
    // The frames stay empty where no file has a picture; behind them is the sheet with the first one's kind.
    documentSheet_.setFileName(intake_->firstFileName());
    documentSheet_.setHidden(!thumbnails.empty() || intake_->itemsCount() == 0);
    thumbnailsShown_ = true;
}

bool SelaShareExtensionVc::areImagesShown() const {
    const UINavigationController* const navigation = navigationController();
    const auto* const picker =
        navigation ? dynamic_cast<const SelaShareExtensionAlbumsVc*>(navigation->topViewController())
                   : nullptr;
    return thumbnailsShown_ && (!picker || picker->areCoversShown());
}

void SelaShareExtensionVc::updateTitle() {
    const UIFont font = UIFont::systemFont(std::ceil(14 * scale_));
    const NSAttributedString::Attributes plain{UIColor::named("AppTextSecond"), font};
    const NSAttributedString::Attributes highlight{UIColor::named("AppTint"), font};
    // Arguments are searched for placeholders again, and an album may be called "%@".
    const NSAttributedString standIn(albumStandIn, highlight);
    const std::int64_t count = intake_->itemsCount();
    NSAttributedString title =
        count == 1 ? NSAttributedString(localized("Add 1 file to xxx"), plain).format({standIn})
                   : NSAttributedString(localized("Add xxx files to xxx"), plain)
                         .format({NSAttributedString(std::to_string(count), highlight), standIn});
    if (const std::size_t place = title.string().find(albumStandIn); place != std::string::npos)
        title.replace(place, albumStandIn.size(), albumText(intake_->selectedAlbumName(), highlight));
    albumButton_.setTitleFont(font);
    albumButton_.setAttributedTitle(title);
    albumButton_.setAccessibilityValue(title.string());
}

void SelaShareExtensionVc::albumButtonTouched(UIButton&) {
    UINavigationController* const navigation = navigationController();
    if (!navigation)
        return;
    const auto picker = std::make_shared<SelaShareExtensionAlbumsVc>();
    picker->setDelegate(weakReference(*this));
    navigation->pushViewController(picker, true);
}

void SelaShareExtensionVc::cancelButtonTapped(UIButton&) {
    UINavigationController* const navigation = navigationController();
    UIView& card = navigation ? navigation->view() : view();
    const double height = card.frame().size.height;
    UIView::animate(
        slideAwaySeconds, [&] { card.setTransform(CGAffineTransform::translation(0, height)); },
        [weak = weakReference(*this)](bool) {
            if (const auto self = weak.lock())
                cancelRequest(*self);
        });
}

void SelaShareExtensionVc::onAddButtonTouched(UIButton&) {
    if (!intake_->beginSaveRun())
        return;
    UIView::animate(
        growSeconds, [this] { containerView_.setTransform(CGAffineTransform::scale(0, 0)); },
        [weak = weakReference(*this)](bool finished) {
            const auto self = weak.lock();
            if (self && finished)
                self->showAdding();
        });
}

void SelaShareExtensionVc::showAdding() {
    UIView::animate(
        growSeconds,
        [this] {
            activityIndicator_.setHidden(false);
            activityIndicator_.startAnimating();
            resultLabel_.setText(localized("Adding..."));
            UIAccessibility::postAnnouncement(resultLabel_.text());
            resultView_.setTransform(CGAffineTransform());
        },
        [weak = weakReference(*this)](bool finished) {
            const auto self = weak.lock();
            if (self && finished)
                self->startSaving();
        });
}

void SelaShareExtensionVc::startSaving() {
    // The screen does not show a run's error; the log has it, and the host reports it. Only the first end of
    // a run counts here: a run that goes on after the store reported an error and then success ends a second
    // time.
    auto isFirstEnd = std::make_shared<bool>(true);
    intake_->saveAttachments([weak = weakReference(*this), isFirstEnd](const ErrorRef&) {
        DispatchQueue::main().async([weak, isFirstEnd] {
            const auto self = weak.lock();
            if (self && std::exchange(*isFirstEnd, false))
                self->showDone();
        });
    });
}

void SelaShareExtensionVc::showDone() {
    activityIndicator_.stopAnimating();
    activityIndicator_.setHidden(true);
    resultIcon_.setHidden(false);
    resultLabel_.setText(localized("Done"));
    UIAccessibility::postAnnouncement(resultLabel_.text());
    DispatchQueue::main().asyncAfter(doneSeconds, [weak = weakReference(*this)] {
        if (const auto self = weak.lock())
            completeRequest(*self);
    });
}

} // namespace sela
