#pragma once

#include "platform/foundation/DispatchQueue.h"
#include "platform/foundation/TaskList.h"

#include <atomic>

namespace sela {

/// The main queue without a window: `run` executes tasks on the calling thread by the monotonic clock and
/// returns when nothing is left to do, that is when no task is queued and no background work is outstanding.
class HeadlessMainLoop : public DispatchQueue {
public:
    /// What to do with the time until the next task is due.
    enum class Idle {
        waits,
        isSkipped, ///< the clock is advanced to the task: animations are not visible
    };

    explicit HeadlessMainLoop(Idle idle = Idle::waits) : idle_(idle) {}

    void async(Task task) override;
    void asyncAfter(double seconds, Task task) override;
    double now() const override;

    /// Runs tasks until nothing is left to do. Called on the thread that is to be the main thread.
    void run();

private:
    const Idle idle_;
    std::atomic<double> skipped_ = 0; ///< seconds by which the clock is ahead of the monotonic one
    TaskList tasks_;
};

} // namespace sela
