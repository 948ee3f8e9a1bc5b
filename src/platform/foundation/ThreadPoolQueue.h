#pragma once

#include "platform/foundation/DispatchQueue.h"

#include <memory>

namespace sela {

/// A queue on threads of its own, which start with it. With one thread it is a serial queue: its tasks run
/// one after another. Each task holds a `BackgroundWork` token from the moment it is given.
class ThreadPoolQueue : public DispatchQueue {
public:
    explicit ThreadPoolQueue(int threads);

    /// Waits for the tasks that were given to end.
    ~ThreadPoolQueue() override;

    void async(Task task) override;
    void asyncAfter(double seconds, Task task) override;
    double now() const override;

    /// Starts no further task until `resume`; running tasks go on. Any thread may call either, any number of
    /// times. Destroying a queue resumes it.
    void suspend();
    void resume();

private:
    struct Pool;
    std::unique_ptr<Pool> pool_;
};

} // namespace sela
