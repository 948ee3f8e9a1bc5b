#include "host/ObservedMainQueue.h"

#include <utility>

namespace sela {

void ObservedMainQueue::async(Task task) {
    inner_.async(counted(std::move(task)));
}

void ObservedMainQueue::asyncAfter(double seconds, Task task) {
    inner_.asyncAfter(seconds, counted(std::move(task)));
}

DispatchQueue::Task ObservedMainQueue::counted(Task task) {
    ++pending_;
    return [this, task = std::move(task)] {
        task();
        --pending_;
    };
}

} // namespace sela
