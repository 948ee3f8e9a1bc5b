#include "support/VirtualMainLoop.h"

#include "platform/foundation/BackgroundWork.h"

#include <limits>
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
    runUpTo(end);
    now_ = end;
}

void VirtualMainLoop::runPending() {
    tasks_.drain([this] { return now_; });
}

void VirtualMainLoop::runUntilIdle() {
    runUpTo(std::numeric_limits<double>::infinity());
}

void VirtualMainLoop::runUpTo(double end) {
    runPending();
    while (true) {
        {
            const std::lock_guard lock(BackgroundWork::mutex());
            const std::optional<double> due = tasks_.nextDueTime();
            if (!due || *due > end)
                return;
            now_ = *due;
        }
        runPending();
    }
}

} // namespace sela
