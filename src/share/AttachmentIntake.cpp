#include "share/AttachmentIntake.h"

#include "platform/foundation/Bundle.h"
#include "platform/foundation/DispatchQueue.h"
#include "platform/foundation/FileName.h"
#include "platform/foundation/NSLog.h"
#include "platform/foundation/TimeText.h"
#include "share/MediaHelpers.h"
#include "store/ShareExtensionError.h"
#include "store/SharedItemLedger.h"
#include "store/SharedItemManager.h"

#include <algorithm>
#include <utility>

namespace sela {

namespace {

/// The share screen has three frames for thumbnails.
constexpr std::int64_t thumbnailPlaces = 3;

/// The JPEG quality for a picture without a file of its own.
constexpr double jpegQuality = 0.9;

std::int64_t countOf(const auto& list) {
    return static_cast<std::int64_t>(list.size());
}

} // namespace

AttachmentIntake::AttachmentIntake() : selectedAlbumName_{Bundle::main().localizedString("Default Album")} {}

void AttachmentIntake::begin(std::shared_ptr<NSExtensionContext> context, PictureBounds thumbnailBounds) {
    extensionContext_ = std::move(context);
    thumbnailBounds_ = thumbnailBounds;
    itemsCount_ = getItemsCount();
    thumbnailCount_ = 0;
    thumbnails_.clear();
    thumbnailsAhead_ = {};
}

NSExtensionItem* AttachmentIntake::firstItem() const {
    if (!extensionContext_ || extensionContext_->inputItems.empty())
        return nullptr;
    return dynamic_cast<NSExtensionItem*>(extensionContext_->inputItems.front().get());
}

std::shared_ptr<const NSExtensionItem::Attachments> AttachmentIntake::attachments() const {
    const NSExtensionItem* const item = firstItem();
    return item ? item->attachments() : nullptr;
}

std::string AttachmentIntake::firstFileName() const {
    const auto list = attachments();
    return list && !list->empty() ? list->front()->suggestedName() : std::string();
}

bool AttachmentIntake::append(const NSExtensionItem::Attachments& more) {
    NSExtensionItem* const item = firstItem();
    if (!item)
        return false;
    item->append(more);
    itemsCount_ = getItemsCount();
    return true;
}

std::int64_t AttachmentIntake::getItemsCount() const {
    const auto list = attachments();
    const std::int64_t count = list ? countOf(*list) : 0;
    NSLog("getItemsCount count = " + std::to_string(count));
    return count;
}

void AttachmentIntake::loadThumbnails(std::function<void()> completion) {
    const std::size_t inputItems = extensionContext_ ? extensionContext_->inputItems.size() : 0;
    NSLog("loadThumbnails inputItems count = " + std::to_string(inputItems));
    const auto list = attachments();
    const bool finished =
        !list || thumbnailCount_ >= countOf(*list) || thumbnailCount_ >= thumbnailPlaces ||
        (*list)[static_cast<std::size_t>(thumbnailCount_)]->registeredTypeIdentifiers().empty();
    if (finished) {
        DispatchQueue::main().async(std::move(completion));
        return;
    }
    const NSItemProvider& provider = *(*list)[static_cast<std::size_t>(thumbnailCount_)];
    const std::string typeIdentifier = provider.registeredTypeIdentifiers().front();
    provider.loadItem(typeIdentifier,
                      [weak = weak_from_this(), typeIdentifier, completion = std::move(completion)](
                          const NSItemProvider::Item& item, const ErrorRef& error) {
                          const std::shared_ptr<AttachmentIntake> self = weak.lock();
                          if (!self || self->extensionContext_->isCancelled())
                              return;
                          self->makeThumbnailsAhead(*self->attachments());
                          self->addThumbnail(item, error, typeIdentifier);
                          self->thumbnailCount_ += 1;
                          self->loadThumbnails(completion);
                      });
}

void AttachmentIntake::makeThumbnailsAhead(const NSExtensionItem::Attachments& list) {
    for (std::int64_t place = thumbnailCount_ + 1; place < std::min(countOf(list), thumbnailPlaces);
         ++place) {
        const NSItemProvider& provider = *list[static_cast<std::size_t>(place)];
        if (provider.registeredTypeIdentifiers().empty())
            return;
        if (!provider.file() || thumbnailsAhead_.has(place))
            continue;
        thumbnailsAhead_.add(place,
                             [context = extensionContext_, file = *provider.file(),
                              type = provider.registeredTypeIdentifiers().front(),
                              bounds = thumbnailBounds_]() -> std::optional<UIImage> {
                                 if (context->isCancelled())
                                     return std::nullopt;
                                 return thumbnailOfSharedFile(file, type, bounds);
                             });
    }
}

void AttachmentIntake::addThumbnail(const NSItemProvider::Item& item, const ErrorRef& error,
                                    const std::string& typeIdentifier) {
    if (error) {
        NSLog("error: " + error->localizedDescription());
        return;
    }
    const URL* const file = std::get_if<URL>(&item);
    if (!file)
        return;
    const std::string place = "item[" + std::to_string(thumbnailCount_) + "]: ";
    NSLog(place + "fileName = " + file->lastPathComponent());
    NSLog(place + "typeIdentifier = " + typeIdentifier);
    std::optional<UIImage> thumbnail = thumbnailsAhead_.has(thumbnailCount_)
                                           ? thumbnailsAhead_.take(thumbnailCount_)
                                           : thumbnailOfSharedFile(*file, typeIdentifier, thumbnailBounds_);
    if (thumbnail)
        thumbnails_.push_back(std::move(*thumbnail));
}

bool AttachmentIntake::beginSaveRun() {
    if (saveRun_.hasBegun())
        return false;
    saveRun_.state = SaveRun::State::saving;
    saveRun_.currentAttachmentIndex = 0;
    if (const auto list = attachments())
        for (const std::shared_ptr<NSItemProvider>& provider : *list)
            saveRun_.outcomes.emplace_back().name = provider->suggestedName();
    changeRun([](SaveRun&) {});
    return true;
}

void AttachmentIntake::saveAttachments(const Completion& completion) {
    saveAttachment(saveRun_.currentAttachmentIndex, completion);
}

void AttachmentIntake::saveAttachment(std::int64_t index, const Completion& completion) {
    const std::size_t inputItems = extensionContext_ ? extensionContext_->inputItems.size() : 0;
    NSLog("InputItems count = " + std::to_string(inputItems));
    const auto list = attachments();
    if (!list || index >= countOf(*list)) {
        endWalk(index, nullptr, completion);
        return;
    }
    const NSItemProvider& provider = *(*list)[static_cast<std::size_t>(index)];
    if (provider.registeredTypeIdentifiers().empty()) {
        endWalk(index, ShareExtensionError::make("No type indentifier"), completion);
        return;
    }
    provider.loadItem(provider.registeredTypeIdentifiers().front(),
                      [weak = weak_from_this(), index, completion](const NSItemProvider::Item& item,
                                                                   const ErrorRef& error) {
                          const std::shared_ptr<AttachmentIntake> self = weak.lock();
                          if (!self)
                              return;
                          if (self->extensionContext_->isCancelled()) {
                              self->endWalk(index, nullptr, nullptr);
                          } else if (error) {
                              NSLog("error: " + error->localizedDescription());
                              self->endWalk(index, error, completion);
                          } else {
                              self->save(item, index, completion);
                          }
                      });
}

void AttachmentIntake::save(const NSItemProvider::Item& item, std::int64_t index,
                            const Completion& completion) {
    if (const URL* const file = std::get_if<URL>(&item)) {
        const std::string name = file->lastPathComponent();
        const SharedItem record = sharedItem(name, name);
        SharedItemManager::saveItem(record, *file, advancing(index, completion), observing(index, record));
    } else if (const UIImage* const image = std::get_if<UIImage>(&item)) {
        save(*image, index, completion);
    } else {
        endWalk(index, ShareExtensionError::make("Unsupported shared item"), completion);
    }
}

void AttachmentIntake::save(const UIImage& image, std::int64_t index, const Completion& completion) {
    const std::optional<EncodedImage> jpeg = image.jpegData(jpegQuality);
    // Encoding the largest takes seconds, in which the window may have been closed.
    if (extensionContext_->isCancelled()) {
        endWalk(index, nullptr, nullptr);
        return;
    }
    if (!jpeg) {
        endWalk(index, ShareExtensionError::make("Failed to encode image"), completion);
        return;
    }
    const SharedItem record = sharedItem(".jpg", std::nullopt);
    SaveObserver observer = observing(index, record);
    // The largest are half a gigabyte, of which only what is being written need be in this process's memory.
    observer.copied = [tellCopied = observer.copied, jpeg = *jpeg](std::int64_t bytes, std::int64_t size) {
        jpeg.release(static_cast<std::size_t>(bytes));
        tellCopied(bytes, size);
    };
    SharedItemManager::saveItem(record, jpeg->bytes(), advancing(index, completion), observer);
}

SharedItem AttachmentIntake::sharedItem(const std::string& nameEnd,
                                        std::optional<std::string> preferredName) const {
    // After the time, the file system's limit on names may leave too little room for a long name.
    const auto [stem, extension] = stemAndExtension(nameEnd);
    return {fittedFileName(uniqueTimeText() + std::string(stem), extension), selectedAlbumName_,
            fakePasswordMode_, std::move(preferredName)};
}

SaveObserver AttachmentIntake::observing(std::int64_t index, const SharedItem& item) {
    const std::weak_ptr<AttachmentIntake> weak = weak_from_this();
    const auto copied = [weak](std::int64_t bytes, std::int64_t size) {
        if (const std::shared_ptr<AttachmentIntake> self = weak.lock())
            self->changeRun([bytes, size](SaveRun& run) {
                run.copiedBytes = bytes;
                run.currentSize = size;
            });
    };
    const auto ended = [weak, index, item](const SaveEnd& end) {
        const std::shared_ptr<AttachmentIntake> self = weak.lock();
        if (!self)
            return;
        self->changeRun([index, item, end](SaveRun& run) {
            AttachmentOutcome& outcome = run.outcomes.at(static_cast<std::size_t>(index));
            const bool isRecorded = end.kind == SaveEnd::Kind::recorded;
            outcome.kind = isRecorded ? AttachmentOutcome::Kind::recorded : AttachmentOutcome::Kind::failed;
            outcome.item = item;
            outcome.reason = end.reason;
            if (isRecorded) {
                outcome.ledgerKey = SharedItemLedger::key(item);
                outcome.size = run.copiedBytes;
            }
            if (end.kind == SaveEnd::Kind::silent)
                run.state = SaveRun::State::stuck;
        });
    };
    const auto shouldStop = [weak] {
        const std::shared_ptr<AttachmentIntake> self = weak.lock();
        return self && self->stopsCopying_;
    };
    return {copied, ended, shouldStop};
}

AttachmentIntake::Completion AttachmentIntake::advancing(std::int64_t index, const Completion& completion) {
    return [weak = weak_from_this(), index, completion](const ErrorRef& error) {
        const std::shared_ptr<AttachmentIntake> self = weak.lock();
        if (!self)
            return;
        if (error) {
            NSLog("saveItem, error: " + error->localizedDescription());
            self->endWalk(index, error, completion);
            return;
        }
        self->changeRun([index](SaveRun& run) {
            // The store may call again without the error with which the walk had ended.
            run.state = SaveRun::State::saving;
            run.currentAttachmentIndex = index + 1;
            run.savedBytes += std::exchange(run.copiedBytes, 0);
            run.currentSize = 0;
        });
        // After a cancellation the current copy is finished, but no new one begins.
        if (self->extensionContext_->isCancelled())
            self->endWalk(index + 1, nullptr, nullptr);
        else
            self->saveAttachment(index + 1, completion);
    };
}

void AttachmentIntake::endWalk(std::int64_t index, const ErrorRef& error, const Completion& completion) {
    changeRun([index, error](SaveRun& run) {
        run.state = SaveRun::State::ended;
        if (!error)
            return;
        AttachmentOutcome& outcome = run.outcomes.at(static_cast<std::size_t>(index));
        // The store's observer got the cause; the error of its completion may say less.
        if (outcome.kind == AttachmentOutcome::Kind::failed)
            return;
        outcome.kind = AttachmentOutcome::Kind::failed;
        outcome.reason = error;
    });
    if (completion)
        completion(error);
}

void AttachmentIntake::changeRun(std::function<void(SaveRun&)> change) {
    DispatchQueue::main().async([weak = weak_from_this(), change = std::move(change)] {
        const std::shared_ptr<AttachmentIntake> self = weak.lock();
        if (!self)
            return;
        change(self->saveRun_);
        if (self->observer_)
            self->observer_(self->saveRun_);
    });
}

} // namespace sela
