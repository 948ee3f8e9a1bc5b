#pragma once

#include "platform/extension/NSExtensionContext.h"
#include "platform/extension/NSExtensionItem.h"
#include "platform/extension/NSItemProvider.h"
#include "platform/foundation/Error.h"
#include "platform/media/UIImage.h"
#include "store/SharedItem.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace sela {

/// Takes in what a share request brings: counts the attachments, loads up to three of them for thumbnails,
/// and saves them all, one after another. The attachments of the first input item are all that is ever read.
///
/// Made on the main thread and held by a `std::shared_ptr`. Its two walks hold it weakly from step to step
/// and end silently when it is gone or the request is cancelled; a copy that is under way is finished. One
/// load or save is in flight at a time, and the fields below are touched only by the step that is running.
class AttachmentIntake : public std::enable_shared_from_this<AttachmentIntake> {
public:
    using Completion = std::function<void(const ErrorRef&)>;

    AttachmentIntake();

    /// The number of attachments of the first input item, which is logged; 0 when there is no request, no
    /// such item, or no attachment list.
    std::int64_t getItemsCount() const;

    /// Puts `more` behind the attachments of the first input item and counts anew. Whether there is such an
    /// item; without one nothing happens. For the time before saving starts; thumbnails may be on their way.
    bool append(const NSExtensionItem::Attachments& more);

    /// Loads thumbnails, attachment by attachment, until three attachments were looked at or none is left,
    /// and then calls `completion` on the main queue, once. Called again for attachments that came later, it
    /// goes on where it had ended. An attachment that yields no picture uses up one
    /// of the three places; one without a type ends the walk.
    void loadThumbnails(std::function<void()> completion);

    /// Saves the attachment at `currentAttachmentIndex` and those after it. `completion` is called on
    /// whatever thread the last step ended: without an error when all are saved, or there is nothing to save;
    /// with the error that ended the walk. It comes twice when the store reports an error and then success
    /// for one attachment, and never when the store never reports back.
    void saveAttachments(const Completion& completion);

    /// The request; null when there is none.
    std::shared_ptr<NSExtensionContext> extensionContext;

    /// The target album as a path of names.
    std::vector<std::string> selectedAlbumName;

    /// The attachment being saved; -1 while saving has not started.
    std::int64_t currentAttachmentIndex = -1;

    /// The number of attachments, set by the owner from `getItemsCount`.
    std::int64_t itemsCount = 0;

    /// Whether the picker was unlocked with the decoy passcode.
    bool fakePasswordMode = false;

    /// The next attachment to load for a thumbnail; also the number of attempts made.
    std::int64_t thumbnailCount = 0;

    /// The thumbnails in the order of the attachments, three at most.
    std::vector<UIImage> thumbnails;

    /// The longer side in pixels to which thumbnails are decoded, set by the owner before `loadThumbnails`.
    int thumbnailSide = 320;

private:
    /// The first input item; null when there is none, or it is of another kind.
    NSExtensionItem* firstItem() const;

    /// The attachments of the first input item; null when there is no such list.
    std::shared_ptr<const NSExtensionItem::Attachments> attachments() const;

    void addThumbnail(const NSItemProvider::Item& item, const ErrorRef& error,
                      const std::string& typeIdentifier);
    void save(const NSItemProvider::Item& item, const Completion& completion);
    SharedItem sharedItem(const std::string& nameEnd, std::optional<std::string> preferredName) const;

    /// What the store calls at the end of one attachment, as often as it calls it.
    Completion advancing(const Completion& completion);
};

} // namespace sela
