#pragma once

#include "platform/foundation/Error.h"
#include "platform/media/MediaMessages.h"
#include "platform/media/UIImage.h"

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <sys/types.h>

namespace sela {

class MediaHelperProcess;
class SharedMemory;

/// Has pictures and videos decoded by helper processes, one for each kind of work, which are started on first
/// need and kept. They run in a sandbox, so a file can at worst crash its helper: that is an error for the
/// file, and the next request starts a new helper; a video that crashed its helper is not tried again under
/// its asset's number. Thread-safe; one request is in flight at a time, others wait.
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

    /// The process that serves `operation`; absent while none runs.
    std::optional<pid_t> helperProcessIdentifier(MediaOperation operation) const;

private:
    using Helper = std::unique_ptr<MediaHelperProcess>;

    Helper& helperFor(MediaOperation operation);
    Result<Answer> performLocked(int file, const MediaRequest& request);

    const Options options_;
    mutable std::mutex mutex_;
    Helper pictureHelper_;
    Helper videoHelper_;
    std::uint32_t requests_ = 0;
    std::uint32_t costlyAsset_ = 0; ///< the last asset whose request the helper did not answer; 0: none
};

} // namespace sela
