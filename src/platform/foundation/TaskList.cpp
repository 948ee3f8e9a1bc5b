#include "platform/foundation/TaskList.h"

#include "platform/foundation/BackgroundWork.h"

namespace sela {

void TaskList::add(double dueTime, DispatchQueue::Task task) {
    tasks_.emplace(std::pair(dueTime, added_++), std::move(task));
    BackgroundWork::changed().notify_all();
}

std::optional<DispatchQueue::Task> TaskList::takeDue(double now) {
    if (tasks_.empty() || tasks_.begin()->first.first > now)
        return std::nullopt;
    return std::move(tasks_.extract(tasks_.begin()).mapped());
}

void TaskList::drain(const std::function<double()>& now) {
    std::unique_lock lock(BackgroundWork::mutex());
    while (true) {
        if (std::optional<DispatchQueue::Task> task = takeDue(now())) {
            lock.unlock();
            (*task)();
            task.reset();
            lock.lock();
        } else if (BackgroundWork::outstanding() > 0) {
            BackgroundWork::changed().wait(lock);
        } else {
            return;
        }
    }
}

std::optional<double> TaskList::nextDueTime() const {
    if (tasks_.empty())
        return std::nullopt;
    return tasks_.begin()->first.first;
}

} // namespace sela
