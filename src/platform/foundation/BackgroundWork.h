#pragma once

#include <condition_variable>
#include <mutex>

namespace sela {

/// A token for work that is under way off the main thread and will end on the main queue or nowhere.
///
/// A main loop that ends when nothing is left to do asks `outstanding` whether more can still arrive. Queues
/// hold one token per task; a task posts to the main queue before its token goes. Thread-safe.
class BackgroundWork {
public:
    BackgroundWork();
    ~BackgroundWork();
    BackgroundWork(const BackgroundWork&) = delete;
    BackgroundWork& operator=(const BackgroundWork&) = delete;

    /// The number of tokens alive. The caller holds `mutex`.
    static int outstanding();

    /// What main loops wait with: the mutex guards their task lists and the number of tokens, and the
    /// condition is notified when a task arrives and when the last token goes.
    static std::mutex& mutex();
    static std::condition_variable& changed();
};

} // namespace sela
