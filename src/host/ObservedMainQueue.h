#pragma once

#include "platform/foundation/DispatchQueue.h"

#include <atomic>

namespace sela {

/// A main queue that hands everything to another one and knows how many of its tasks have not run yet, due or
/// delayed: by that, whoever drives the screen knows when it has come to rest. Thread-safe.
class ObservedMainQueue : public DispatchQueue {
public:
    /// `inner` must outlive this queue, and this queue every task given to it.
    explicit ObservedMainQueue(DispatchQueue& inner) : inner_(inner) {}

    void async(Task task) override;
    void asyncAfter(double seconds, Task task) override;
    double now() const override { return inner_.now(); }

    /// Tasks that wait or run now.
    int pendingTasks() const { return pending_; }

    /// The queue behind, whose tasks are not counted.
    DispatchQueue& inner() { return inner_; }

private:
    Task counted(Task task);

    DispatchQueue& inner_;
    std::atomic<int> pending_ = 0;
};

} // namespace sela
