#include "platform/media/MediaServiceClient.h"

#include "platform/foundation/FileManager.h"
#include "platform/foundation/MonotonicClock.h"
#include "platform/media/AVError.h"
#include "platform/media/MediaHelperProcess.h"
#include "platform/media/SharedMemory.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace sela {

namespace {

// Encoding a picture of half a gigapixel in full size takes about this many times as long as decoding one of
// 48 megapixels.
constexpr double encodingFactor = 6;

bool isOfPictures(MediaOperation operation) {
    return operation == MediaOperation::decodePicture || operation == MediaOperation::encodePicture;
}

std::string_view programName(MediaOperation operation) {
    return isOfPictures(operation) ? "sela-media" : "sela-media-video";
}

std::string locateProgram(const std::string& directory, std::string_view name) {
    namespace fs = std::filesystem;
    if (!directory.empty())
        return fs::path(directory) / name;
    if (const char* override = std::getenv("SELA_MEDIA_DIRECTORY"))
        return fs::path(override) / name;
    std::error_code error;
    const fs::path own = fs::read_symlink("/proc/self/exe", error).parent_path();
    if (fs::exists(own / name, error))
        return own / name;
    return own.parent_path() / "libexec" / "sela-share" / name;
}

ErrorRef mediaError(int code, std::string description) {
    return std::make_shared<NSError>(AVFoundationErrorDomain, code, std::move(description));
}

ErrorRef helperWasReset() {
    return mediaError(AVErrorMediaServicesWereReset, "The media helper did not answer");
}

ErrorRef errorOfStatus(MediaStatus status) {
    if (status == MediaStatus::noSuchFrame)
        return mediaError(AVErrorNoImageAtTime, "The video has no frame at that time");
    return mediaError(AVErrorFileFormatNotRecognized, "The file cannot be decoded");
}

} // namespace

MediaServiceClient& MediaServiceClient::shared() {
    // It is never destroyed: a thread may still load when the process ends, and helpers end with it.
    static auto* const client = new MediaServiceClient{Options{}};
    return *client;
}

/// The assignment of a worker to one request, as long as it lives.
class MediaServiceClient::Assignment {
public:
    /// Waits until one is idle, and takes the one that has the request's asset open, else the first.
    Assignment(MediaServiceClient& client, const MediaRequest& request) : client_(client) {
        auto& workers = isOfPictures(request.operation) ? client.pictureWorkers_ : client.videoWorkers_;
        std::unique_lock lock(client.mutex_);
        client.workerBecameIdle_.wait(lock, [&] { return std::ranges::any_of(workers, &Worker::isIdle); });
        auto chosen = std::ranges::find_if(workers, [&](const Worker& worker) {
            return worker.isIdle && request.asset != 0 && worker.asset == request.asset;
        });
        if (chosen == workers.end())
            chosen = std::ranges::find_if(workers, &Worker::isIdle);
        worker_ = &*chosen;
        worker_->isIdle = false;
        worker_->asset = request.asset;
    }

    ~Assignment() {
        {
            const std::lock_guard lock(client_.mutex_);
            worker_->isIdle = true;
        }
        client_.workerBecameIdle_.notify_all();
    }

    Assignment(const Assignment&) = delete;
    Assignment& operator=(const Assignment&) = delete;

    Worker& worker() const { return *worker_; }

private:
    MediaServiceClient& client_;
    Worker* worker_ = nullptr;
};

MediaServiceClient::MediaServiceClient(Options options) : options_(std::move(options)) {}

MediaServiceClient::~MediaServiceClient() = default;

Result<MediaServiceClient::Answer> MediaServiceClient::perform(const std::string& path,
                                                               MediaRequest request) {
    const auto file = FileManager::defaultManager().openRegularFile(path);
    if (!file)
        return file.error();
    if (isCostly(request.asset))
        return helperWasReset();
    const Assignment assignment(*this, request);
    request.number = ++requests_;
    return perform(assignment.worker(), file.value().descriptor.get(), request);
}

std::optional<pid_t> MediaServiceClient::helperProcessIdentifier(MediaOperation operation) const {
    const Worker& first = isOfPictures(operation) ? pictureWorkers_.front() : videoWorkers_.front();
    if (!first.helper)
        return std::nullopt;
    return first.helper->processIdentifier();
}

bool MediaServiceClient::isCostly(std::uint32_t asset) {
    const std::lock_guard lock(mutex_);
    return costlyAssets_.contains(asset);
}

bool MediaServiceClient::startHelper(Worker& worker, MediaOperation operation) const {
    worker.helper =
        MediaHelperProcess::start(locateProgram(options_.programDirectory, programName(operation)));
    return worker.helper != nullptr;
}

Result<MediaServiceClient::Answer> MediaServiceClient::perform(Worker& worker, int file,
                                                               const MediaRequest& request) {
    std::vector<int> descriptors{file};
    std::optional<SharedMemory> memory;
    if (request.memorySize() > 0) {
        memory = SharedMemory::create(request.memorySize());
        if (!memory)
            return NSError::posix(errno, "shared memory");
        descriptors.push_back(memory->descriptor());
    }

    const double factor = request.operation == MediaOperation::encodePicture ? encodingFactor : 1;
    const double deadline = monotonicSeconds() + factor * options_.timeLimit;
    const Data message = encode(request);
    const auto ask = [&] {
        return worker.helper->send(message, descriptors) ? worker.helper->receive(deadline) : std::nullopt;
    };
    auto packet = worker.helper ? ask() : std::nullopt;
    // It may have ended between two requests, or earlier ones may have used up its time on the processor:
    // only a new helper is ended by this file.
    if (!packet && monotonicSeconds() < deadline && startHelper(worker, request.operation))
        packet = ask();
    const auto response = packet ? decodeResponse(packet->bytes, request) : std::nullopt;
    if (!response) {
        if (std::exchange(worker.helper, nullptr) && request.asset != 0) {
            const std::lock_guard lock(mutex_);
            costlyAssets_.insert(request.asset);
        }
        return helperWasReset();
    }
    if (response->status != MediaStatus::done)
        return errorOfStatus(response->status);

    Answer answer{*response, {}, {}};
    if (request.operation == MediaOperation::encodePicture) {
        answer.file = std::make_shared<const SharedMemory>(std::move(*memory));
    } else if (memory) {
        auto copy = memory->copy(response->width, response->height);
        if (!copy)
            return mediaError(AVErrorUnknown, "The media helper answered with too many pixels");
        answer.pixels = std::move(*copy);
    }
    return answer;
}

} // namespace sela
