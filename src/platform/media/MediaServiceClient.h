#pragma once

#include "platform/foundation/Error.h"
#include "platform/media/MediaMessages.h"
#include "platform/media/UIImage.h"

#include <array>
#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <sys/types.h>

namespace sela {

class MediaHelperProcess;
class SharedMemory;

/// Has pictures and videos decoded by helper processes, which are started on first need and kept: one for
/// each kind of work, and a second one of the kind when two requests are in flight at the same time; further
/// ones wait. They run in a sandbox, so a file can at worst crash its helper, and then a new one, if that
/// helper had answered before: that is an error for the file, and the next request starts a new helper; a
/// video that crashed its helper is not tried again under its
/// asset's number. Thread-safe.
class MediaServiceClient {
public:
    struct Options {
        /// The folder of the helper programs. Empty: the environment's SELA_MEDIA_DIRECTORY, or the running
        /// program's folder, or where an installed program keeps its helpers.
        std::string programDirectory;

        /// How long one request may take, in seconds. The slowest file measured (48 megapixels of HEIC) takes
        /// 3 on an idle desktop; a slow or busy machine gets several times that.
        double timeLimit = 20;
    };

    /// What a helper answered, with the pixels or the JPEG file that were asked for.
    struct Answer {
        MediaResponse response;
        PixelBuffer pixels;
        std::shared_ptr<const SharedMemory> file; ///< in its first `response.fileSize` bytes
    };

    /// The client of this process.
    static MediaServiceClient& shared();

    explicit MediaServiceClient(Options options);

    /// Ends the helpers.
    ~MediaServiceClient();

    MediaServiceClient(const MediaServiceClient&) = delete;
    MediaServiceClient& operator=(const MediaServiceClient&) = delete;

    /// Has `request` done on the file at `path`; its number is filled in here. Fails with a POSIX error when
    /// the file cannot be opened or is no regular file, otherwise with a code of AVFoundationErrorDomain:
    /// AVErrorFileFormatNotRecognized, AVErrorNoImageAtTime, or AVErrorMediaServicesWereReset when the helper
    /// could not be started, ended, broke the rules or ran out of time. Blocks.
    Result<Answer> perform(const std::string& path, MediaRequest request);

    /// The first process that serves `operation`; absent while it does not run. To be called while no request
    /// is in flight.
    std::optional<pid_t> helperProcessIdentifier(MediaOperation operation) const;

private:
    /// A helper, used by one request at a time.
    struct Worker {
        std::unique_ptr<MediaHelperProcess> helper; ///< null while none runs
        std::uint32_t asset = 0;                    ///< that of the last request; 0: none
        bool isIdle = true;
    };
    class Assignment;

    bool isCostly(std::uint32_t asset);
    bool startHelper(Worker& worker, MediaOperation operation) const;
    Result<Answer> perform(Worker& worker, int file, const MediaRequest& request);

    const Options options_;
    std::mutex mutex_; ///< guards which workers are idle, the asset of each, and the costly assets
    std::condition_variable workerBecameIdle_;
    std::array<Worker, 2> pictureWorkers_;
    std::array<Worker, 2> videoWorkers_;
    std::set<std::uint32_t> costlyAssets_; ///< those of which a request was not answered
    std::atomic<std::uint32_t> requests_ = 0;
};

} // namespace sela
