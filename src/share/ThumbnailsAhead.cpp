#include "share/ThumbnailsAhead.h"

#include "platform/foundation/NSLog.h"
#include "platform/foundation/ThreadPoolQueue.h"

#include <atomic>
#include <chrono>
#include <fstream>
#include <future>
#include <sched.h>
#include <string>
#include <utility>
#include <vector>

namespace sela {

namespace {

/// What two decoders may take at most: each may have 1.5 GiB of address space.
constexpr std::int64_t memoryOfTwoDecoders = std::int64_t{3} << 30;

/// The memory in bytes that can be had without swapping; 0 when the system does not say.
std::int64_t availableMemory() {
    std::ifstream file("/proc/meminfo");
    for (std::string word; file >> word;)
        if (std::int64_t kibibytes = 0; word == "MemAvailable:" && file >> kibibytes)
            return kibibytes * 1024;
    return 0;
}

int availableProcessors() {
    cpu_set_t processors;
    return ::sched_getaffinity(0, sizeof processors, &processors) == 0 ? CPU_COUNT(&processors) : 1;
}

/// Never destroyed, since a thumbnail may still be made when main ends.
ThreadPoolQueue& makingQueue() {
    static auto* const queue = new ThreadPoolQueue(1);
    return *queue;
}

} // namespace

bool ThumbnailsAhead::canMakeTwo() {
    return availableProcessors() > 1 && availableMemory() >= memoryOfTwoDecoders;
}

struct ThumbnailsAhead::Thumbnail {
    explicit Thumbnail(Maker maker) : make(std::move(maker)) {}

    /// Makes it, unless that has begun on another thread.
    void begin() {
        if (hasBegun.exchange(true))
            return;
        const HeldLog log;
        image = make();
        logged = log.texts();
        ended.set_value();
    }

    const Maker make;
    std::atomic<bool> hasBegun = false;
    std::promise<void> ended;
    std::optional<UIImage> image;
    std::vector<std::string> logged;
};

void ThumbnailsAhead::add(std::int64_t place, Maker make) {
    const auto thumbnail = std::make_shared<Thumbnail>(std::move(make));
    places_[place] = thumbnail;
    if (canMakeTwo())
        makingQueue().async([weak = std::weak_ptr(thumbnail)] {
            if (const std::shared_ptr<Thumbnail> wanted = weak.lock())
                wanted->begin();
        });
}

std::optional<UIImage> ThumbnailsAhead::take(std::int64_t place) {
    const std::shared_ptr<Thumbnail> thumbnail = places_.extract(place).mapped();
    const std::future<void> end = thumbnail->ended.get_future();
    thumbnail->begin();
    for (const auto& [following, next] : places_) {
        if (end.wait_for(std::chrono::seconds(0)) == std::future_status::ready)
            break;
        if (following > place)
            next->begin();
    }
    end.wait();
    for (const std::string& text : thumbnail->logged)
        NSLog(text);
    return thumbnail->image;
}

} // namespace sela
