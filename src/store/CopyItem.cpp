#include "platform/foundation/DispatchQueue.h"
#include "platform/foundation/FatalError.h"
#include "platform/foundation/FileManager.h"
#include "platform/foundation/NSLog.h"
#include "platform/foundation/StreamCopy.h"
#include "store/ShareExtensionError.h"
#include "store/SharedItemManager.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace sela {

namespace {

/// One running copy, on one background thread.
class FileCopy {
public:
    FileCopy(URL source, URL destination, SharedItemManager::Progress progress,
             SharedItemManager::Completion completion, SaveObserver observer)
        : source_(std::move(source)), destination_(std::move(destination)), progress_(std::move(progress)),
          completion_(std::move(completion)), observer_(std::move(observer)) {}

    void run() {
        if (const ErrorRef error = createStreams()) {
            observer_.tellEnd(SaveEnd::Kind::failed, error);
            if (completion_)
                completion_(ShareExtensionError::make("failed to create stream"));
            return;
        }
        const Result<FileAttributes> attributes =
            FileManager::defaultManager().attributesOfItem(source_.path());
        if (!attributes) {
            abandon(attributes.error());
            return;
        }
        // An empty source is never reported: there is nothing to record.
        if (const std::int64_t size = attributes.value().size; size > 0) {
            const std::int64_t lastRead = copyBlocks(size);
            if (lastRead > 0)
                abandon(ShareExtensionError::make("the copy was interrupted"));
            else
                end(lastRead);
        } else {
            output_->synchronize();
            observer_.tellEnd(SaveEnd::Kind::silent, ShareExtensionError::make("the file is empty"));
        }
    }

private:
    /// The source first, so that a missing source leaves no empty destination.
    ErrorRef createStreams() {
        FileManager& files = FileManager::defaultManager();
        Result<InputStream> input = files.inputStream(source_);
        if (!input)
            return input.error();
        Result<OutputStream> output = files.outputStream(destination_, input.value().expectedSize());
        if (!output)
            return output.error();
        input_ = std::move(input.value());
        output_ = std::move(output.value());
        return nullptr;
    }

    /// Returns what the last read returned: 0 at the end of the file, more when the copy is to stop.
    std::int64_t copyBlocks(std::int64_t size) {
        StreamCopy copy(*input_, *output_);
        std::int64_t total = 0;
        std::int64_t count = copy.copyBlock();
        while (count > 0) {
            // The stream keeps the error of a failed write, and synchronize returns it.
            if (__builtin_add_overflow(total, count, &total))
                fatalError("copyItem: the number of bytes overflows");
            logBlock(count, total);
            observer_.tellCopied(total, size);
            postProgress(static_cast<float>(total) / static_cast<float>(size));
            if (observer_.wantsStop())
                return count;
            count = copy.copyBlock();
        }
        if (count == 0)
            logBlock(0, total);
        return count;
    }

    void end(std::int64_t lastRead) {
        if (lastRead < 0) {
            const ErrorRef error = input_->streamError();
            NSLog("copyItem: read error = " + (error ? error->localizedDescription() : std::string()));
            abandon(error);
            return;
        }
        if (const ErrorRef error = output_->synchronize()) {
            NSLog("copyItem: write error = " + error->localizedDescription());
            abandon(error);
            return;
        }
        DispatchQueue::main().async([progress = progress_, completion = completion_] {
            if (progress)
                progress(1.0f);
            if (completion)
                completion(nullptr);
        });
    }

    /// Ends the copy with an error and removes the partial file.
    void abandon(const ErrorRef& error) {
        FileManager::defaultManager().removeItem(destination_.path());
        observer_.tellEnd(SaveEnd::Kind::failed, error);
        DispatchQueue::main().async([completion = completion_, error] {
            if (completion)
                completion(error);
        });
    }

    static void logBlock(std::int64_t count, std::int64_t total) {
        NSLog("copyItem: readBytes = " + std::to_string(count) +
              ", totalReadBytes = " + std::to_string(total));
    }

    void postProgress(float fraction) {
        if (progress_)
            DispatchQueue::main().async([progress = progress_, fraction] { progress(fraction); });
    }

    const URL source_;
    const URL destination_;
    const SharedItemManager::Progress progress_;
    const SharedItemManager::Completion completion_;
    const SaveObserver observer_;
    std::optional<InputStream> input_;
    std::optional<OutputStream> output_;
};

} // namespace

void SharedItemManager::copyItem(const URL& source, const URL& destination, Progress progress,
                                 Completion completion, const SaveObserver& observer) {
    auto copy =
        std::make_shared<FileCopy>(source, destination, std::move(progress), std::move(completion), observer);
    DispatchQueue::global().async([copy] { copy->run(); });
}

} // namespace sela
