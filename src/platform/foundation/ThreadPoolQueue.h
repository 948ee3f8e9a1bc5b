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

    /// Lets no further task begin until `resume`; those under way go on. Any thread may call either, however
    /// often. A queue that is destroyed resumes.
    void suspend();
    void resume();

private:
    struct Pool;
    std::unique_ptr<Pool> pool_;
};

} // namespace sela
