#pragma once

#include "platform/extension/NSExtensionContext.h"
#include "platform/extension/NSExtensionItem.h"
#include "platform/extension/NSItemProvider.h"
#include "platform/foundation/Error.h"
#include "platform/media/UIImage.h"
#include "share/SaveRun.h"
#include "share/ThumbnailsAhead.h"
#include "store/SaveObserver.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace sela {

/// Processes the attachments of a share request: counts them, loads up to three of them for thumbnails, and
/// saves them all, one after another. Only the attachments of the first input item are ever read.
///
/// Made and used on the main thread, and held by a `std::shared_ptr`. Its two walks hold it weakly from step
/// to step and end silently when it is destroyed or the request is cancelled; a running copy is finished. A
/// walk goes on on the thread on which its last step ended; its results are posted to the main queue, the
/// only place where `saveRun` changes. One load or save is in flight at a time; thumbnails of files that will
/// be loaded next may be made meanwhile (`ThumbnailsAhead`).
class AttachmentIntake : public std::enable_shared_from_this<AttachmentIntake> {
public:
    using Completion = std::function<void(const ErrorRef&)>;

    AttachmentIntake();

    /// Starts on a request (null: none): counts its attachments and forgets all thumbnails, which will be
    /// decoded to `thumbnailBounds`.
    void begin(std::shared_ptr<NSExtensionContext> context, PictureBounds thumbnailBounds);

    /// The number of attachments of the first input item, which is logged; 0 when there is no request, no
    /// such item, or no attachment list.
    std::int64_t getItemsCount() const;

    /// The file name of the first attachment; empty when there is none, or it has no name.
    std::string firstFileName() const;

    /// Appends `more` to the attachments of the first input item and counts again. False, and nothing
    /// happens, when there is no such item. To be called before saving starts; thumbnails may be loading.
    bool append(const NSExtensionItem::Attachments& more);

    /// Loads thumbnails, attachment by attachment, until three attachments were tried or none is left, and
    /// then calls `completion` on the main queue, once. Called again for attachments that came later, it
    /// continues where it had ended. An attachment that yields no picture uses up one of the three places;
    /// one without a type ends the walk.
    void loadThumbnails(std::function<void()> completion);

    /// Starts the save run at the first attachment, which `saveAttachments` then saves. False, and nothing
    /// happens, when it had begun before.
    bool beginSaveRun();

    /// Saves the attachment at `currentAttachmentIndex` and those after it. `completion` is called on the
    /// thread on which the last step ended: without an error when all are saved, or there is nothing to save;
    /// with the error that ended the walk. It is called twice when the store reports an error and then
    /// success for one attachment, and never when the store never calls back.
    void saveAttachments(const Completion& completion);

    /// Ends the running copy, and each that begins later, with an error. Any thread.
    void stopCopying() { stopsCopying_ = true; }

    /// The state of saving. A task that the completion of `saveAttachments` posts to the main queue finds it
    /// up to date.
    const SaveRun& saveRun() const { return saveRun_; }

    /// Called on the main queue after each change of `saveRun`, and with each block that was copied.
    void setSaveObserver(std::function<void(const SaveRun&)> observer) { observer_ = std::move(observer); }

    /// The target album as a path of names; the one element "Default Album", localized, until it is set.
    const std::vector<std::string>& selectedAlbumName() const { return selectedAlbumName_; }
    void setSelectedAlbumName(std::vector<std::string> namePath) { selectedAlbumName_ = std::move(namePath); }

    /// Whether the picker was unlocked with the decoy passcode.
    bool fakePasswordMode() const { return fakePasswordMode_; }
    void setFakePasswordMode(bool fake) { fakePasswordMode_ = fake; }

    /// The attachment being saved; -1 while saving has not started.
    std::int64_t currentAttachmentIndex() const { return saveRun_.currentAttachmentIndex; }

    /// The number of attachments as it was last counted.
    std::int64_t itemsCount() const { return itemsCount_; }

    /// The next attachment to load for a thumbnail; also the number of attempts made. To be called, as
    /// `thumbnails`, while no thumbnail is loading.
    std::int64_t thumbnailCount() const { return thumbnailCount_; }

    /// The thumbnails in the order of the attachments, three at most.
    const std::vector<UIImage>& thumbnails() const { return thumbnails_; }

private:
    /// The first input item; null when there is none, or it is of another kind.
    NSExtensionItem* firstItem() const;

    /// The attachments of the first input item; null when there is no such list.
    std::shared_ptr<const NSExtensionItem::Attachments> attachments() const;

    /// Begins to make the thumbnails of the places that follow, as far as their files are known.
    void makeThumbnailsAhead(const NSExtensionItem::Attachments& list);

    void addThumbnail(const NSItemProvider::Item& item, const ErrorRef& error,
                      const std::string& typeIdentifier);

    void saveAttachment(std::int64_t index, const Completion& completion);
    void save(const NSItemProvider::Item& item, std::int64_t index, const Completion& completion);
    void save(const UIImage& image, std::int64_t index, const Completion& completion);
    SharedItem sharedItem(const std::string& nameEnd, std::optional<std::string> preferredName) const;

    /// What the store reports about the attachment besides its completion.
    SaveObserver observing(std::int64_t index, const SharedItem& item);

    /// The store's completion for one attachment, for each time that it is called.
    Completion advancing(std::int64_t index, const Completion& completion);

    /// Ends the walk at an attachment, or after the last one.
    void endWalk(std::int64_t index, const ErrorRef& error, const Completion& completion);

    /// Changes `saveRun_` on the main queue, and calls the observer.
    void changeRun(std::function<void(SaveRun&)> change);

    std::shared_ptr<NSExtensionContext> extensionContext_;
    std::vector<std::string> selectedAlbumName_;
    bool fakePasswordMode_ = false;
    std::int64_t itemsCount_ = 0;
    std::int64_t thumbnailCount_ = 0;
    std::vector<UIImage> thumbnails_;
    ThumbnailsAhead thumbnailsAhead_;
    PictureBounds thumbnailBounds_ = 0;
    std::atomic<bool> stopsCopying_ = false;
    SaveRun saveRun_;
    std::function<void(const SaveRun&)> observer_;
};

} // namespace sela
