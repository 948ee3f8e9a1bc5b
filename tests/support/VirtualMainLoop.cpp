#include "support/VirtualMainLoop.h"

#include "platform/foundation/BackgroundWork.h"

#include <utility>

namespace sela {

void VirtualMainLoop::async(Task task) {
    asyncAfter(0, std::move(task));
}

void VirtualMainLoop::asyncAfter(double seconds, Task task) {
    const std::lock_guard lock(BackgroundWork::mutex());
    tasks_.add(now_ + seconds, std::move(task));
}

double VirtualMainLoop::now() const {
    return now_;
}

void VirtualMainLoop::advance(double seconds) {
    const double end = now_ + seconds;
    runPending();
    while (true) {
        {
            const std::lock_guard lock(BackgroundWork::mutex());
            const std::optional<double> due = tasks_.nextDueTime();
            now_ = due && *due <= end ? *due : end;
        }
        runPending();
        const std::lock_guard lock(BackgroundWork::mutex());
        const std::optional<double> due = tasks_.nextDueTime();
        if (now_ >= end && !(due && *due <= end))
            return;
    }
}

void VirtualMainLoop::runPending() {
    tasks_.drain([this] { return now_; });
}

void VirtualMainLoop::runUntilIdle() {
    runPending();
    while (true) {
        {
            const std::lock_guard lock(BackgroundWork::mutex());
            const std::optional<double> due = tasks_.nextDueTime();
            if (!due)
                return;
            now_ = *due;
        }
        runPending();
    }
}

bool VirtualMainLoop::isIdle() const {
    const std::lock_guard lock(BackgroundWork::mutex());
    return !tasks_.nextDueTime() && BackgroundWork::outstanding() == 0;
}

} // namespace sela
