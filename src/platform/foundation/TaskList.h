#pragma once

#include "platform/foundation/DispatchQueue.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <utility>

namespace sela {

/// Tasks by due time, first given first among those due together. For every operation but `drain` the caller
/// must hold `BackgroundWork::mutex`, so that a loop can check the list and the outstanding work at one
/// moment.
class TaskList {
public:
    /// Adds a task and wakes the threads that wait for one.
    void add(double dueTime, DispatchQueue::Task task);

    /// Takes out the first task that is due at `now`; absent when none is.
    std::optional<DispatchQueue::Task> takeDue(double now);

    /// When the first task is due; absent when the list is empty.
    std::optional<double> nextDueTime() const;

    /// Runs tasks on the calling thread as they are due by `now`, waiting for background work, until nothing
    /// is due and no background work is outstanding. Tasks that are due later stay.
    void drain(const std::function<double()>& now);

private:
    std::map<std::pair<double, std::uint64_t>, DispatchQueue::Task> tasks_;
    std::uint64_t added_ = 0;
};

} // namespace sela
