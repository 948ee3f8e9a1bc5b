#pragma once

#include "platform/foundation/DispatchQueue.h"

#include <atomic>

namespace sela {

/// A main queue that forwards everything to another one and counts the tasks that have not run yet, due or
/// delayed, by which the code that drives the screen knows when it has come to rest. Thread-safe.
class ObservedMainQueue : public DispatchQueue {
public:
    /// `inner` must outlive this queue, and this queue every task given to it.
    explicit ObservedMainQueue(DispatchQueue& inner) : inner_(inner) {}

    void async(Task task) override;
    void asyncAfter(double seconds, Task task) override;
    double now() const override { return inner_.now(); }

    /// Tasks that are queued or running.
    int pendingTasks() const { return pending_; }

    /// The inner queue, whose own tasks are not counted.
    DispatchQueue& inner() { return inner_; }

private:
    Task counted(Task task);

    DispatchQueue& inner_;
    std::atomic<int> pending_ = 0;
};

} // namespace sela
