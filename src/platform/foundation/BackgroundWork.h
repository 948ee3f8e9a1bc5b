#pragma once

#include <condition_variable>
#include <mutex>

namespace sela {

/// A token for work in progress off the main thread, which ends on the main queue or nowhere.
///
/// A main loop that ends when nothing is left to do checks `outstanding` for work that may still post tasks.
/// Queues hold one token per task; a task posts to the main queue, and what it holds is destroyed, before its
/// token is. Thread-safe.
class BackgroundWork {
public:
    BackgroundWork();
    ~BackgroundWork();
    BackgroundWork(const BackgroundWork&) = delete;
    BackgroundWork& operator=(const BackgroundWork&) = delete;

    /// The number of tokens alive. The caller holds `mutex`.
    static int outstanding();

    /// What main loops wait with: the mutex guards their task lists and the number of tokens, and the
    /// condition is notified when a task arrives and when the last token is destroyed.
    static std::mutex& mutex();
    static std::condition_variable& changed();
};

} // namespace sela
