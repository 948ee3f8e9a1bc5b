#pragma once

#include "platform/foundation/DispatchQueue.h"
#include "platform/foundation/TaskList.h"

namespace sela {

/// The main queue without a window: `run` executes tasks on the calling thread by the monotonic clock and
/// returns when nothing is left to do, that is when no task is queued and no background work is outstanding.
class HeadlessMainLoop : public DispatchQueue {
public:
    void async(Task task) override;
    void asyncAfter(double seconds, Task task) override;
    double now() const override;

    /// Runs tasks until nothing is left to do. Called on the thread that is to be the main thread.
    void run();

private:
    TaskList tasks_;
};

} // namespace sela
