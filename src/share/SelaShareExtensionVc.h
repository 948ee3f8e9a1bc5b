#pragma once

#include "platform/uikit/UIActivityIndicatorView.h"
#include "platform/uikit/UIButton.h"
#include "platform/uikit/UIImageView.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UIView.h"
#include "platform/uikit/UIViewController.h"
#include "share/AttachmentIntake.h"
#include "ui/DocumentSheet.h"
#include "unlock/SelaShareExtensionAlbumsVcDelegate.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace sela {

/// The share screen: a card with up to three thumbnails, the line that says how many files go into which
/// album (and is the button that chooses the album), Cancel and Add. After Add it turns into a small panel
/// that says "Adding..." and then "Done", and the request ends. Main thread only.
///
/// Its intake counts, previews and saves; the album comes from the picker, whose delegate it is.
class SelaShareExtensionVc : public UIViewController, public SelaShareExtensionAlbumsVcDelegate {
public:
    SelaShareExtensionVc();

    /// Stops the process: there are no archives.
    explicit SelaShareExtensionVc(const NSCoder& coder);

    void viewDidLoad() override;
    void viewDidLayoutSubviews() override;

    void setFakePasswordMode(bool fake) override { intake_->setFakePasswordMode(fake); }
    void setSelectedAlbumName(const std::vector<std::string>& namePath) override {
        intake_->setSelectedAlbumName(namePath);
    }

    /// Rebuilds the title of `albumButton` from the number of attachments and the album.
    void updateTitle() override;

    void albumButtonTouched(UIButton& button);
    void cancelButtonTapped(UIButton& sender);
    void onAddButtonTouched(UIButton& button);

    const AttachmentIntake& intake() const { return *intake_; }

    /// Appends further attachments to the request and updates count, title, pile and thumbnails. False, and
    /// nothing happens, when there is no request to add to, or Add was tapped already.
    bool append(const NSExtensionItem::Attachments& attachments);

    /// Whether the pictures that load behind the screens are shown: the thumbnails here, the covers of the
    /// picker.
    bool areImagesShown() const;

    /// The state of saving. Once it has begun only its end ends the request.
    const SaveRun& saveRun() const { return intake_->saveRun(); }

    /// Ends the running copy with an error, so that its partial file is removed. Any thread.
    void stopCopying() { intake_->stopCopying(); }

    /// Called on the main queue whenever `saveRun` has changed.
    void setSaveObserver(std::function<void(const SaveRun&)> observer) {
        intake_->setSaveObserver(std::move(observer));
    }

private:
    /// A design length in whole points.
    double whole(double designLength) const;

    void buildTree();
    void layoutPanels();
    void layoutCard();
    void layoutThumbnails();
    void layoutStack();
    void styleCard();
    void styleButtons();
    void styleResult();

    void loadThumbnails();
    void showThumbnails();
    void showAdding();
    void startSaving();
    void showDone();

    UIView resultView_{"resultView"};
    UIImageView resultIcon_{"resultIcon", UIImage::named("Success")};
    UIActivityIndicatorView activityIndicator_{"activityIndicator"};
    UILabel resultLabel_{"resultLabel"};
    UIView containerView_{"containerView"};
    UILabel titleLabel_{"titleLabel"};
    UIButton albumButton_{"albumButton"};
    UIImageView disclosureIcon_{"disclosureIcon", UIImage::named("Disclosure")};
    UIView imageViewContainer_{"imageViewContainer"};
    UIImageView imageView1_{"imageView1"};
    UIView imageView1Container_{"imageView1Container"};
    UIImageView imageView2_{"imageView2"};
    UIView imageView2Container_{"imageView2Container"};
    UIImageView imageView3_{"imageView3"};
    UIView imageView3Container_{"imageView3Container"};
    DocumentSheet documentSheet_{"documentSheet"};
    UIButton cancelButton_{"cancelButton"};
    UIButton addButton_{"addButton"};

    /// Has the state: the chosen album, the mode, the counters and the thumbnails.
    const std::shared_ptr<AttachmentIntake> intake_;

    /// Measured once, when the view loads, so that fonts and lengths stay what they are.
    double scale_ = 1;

    bool thumbnailsShown_ = false;
};

} // namespace sela
