#include "platform/foundation/HeadlessMainLoop.h"

#include "platform/foundation/BackgroundWork.h"
#include "platform/foundation/MonotonicClock.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace sela {

namespace {

/// The real time that skipping to a task takes at least, so that a task that polls does not occupy a core.
constexpr std::chrono::microseconds shortestPause{100};

} // namespace

void HeadlessMainLoop::async(Task task) {
    asyncAfter(0, std::move(task));
}

void HeadlessMainLoop::asyncAfter(double seconds, Task task) {
    const std::lock_guard lock(BackgroundWork::mutex());
    tasks_.add(now() + seconds, std::move(task));
}

double HeadlessMainLoop::now() const {
    return monotonicSeconds() + skipped_;
}

void HeadlessMainLoop::run() {
    std::unique_lock lock(BackgroundWork::mutex());
    while (true) {
        if (std::optional<Task> task = tasks_.takeDue(now())) {
            lock.unlock();
            (*task)();
            task.reset();
            lock.lock();
        } else if (const std::optional<double> due = tasks_.nextDueTime()) {
            if (idle_ == Idle::isSkipped && BackgroundWork::outstanding() == 0) {
                skipped_ = skipped_ + std::max(0.0, *due - now());
                BackgroundWork::changed().wait_for(lock, shortestPause);
                continue;
            }
            BackgroundWork::changed().wait_for(lock, std::chrono::duration<double>(*due - now()));
        } else if (BackgroundWork::outstanding() > 0) {
            BackgroundWork::changed().wait(lock);
        } else {
            return;
        }
    }
}

} // namespace sela
