#pragma once

#include "platform/foundation/DispatchQueue.h"

namespace sela {

/// Makes a queue the main queue for as long as this object lives.
class ScopedMainQueue {
public:
    explicit ScopedMainQueue(DispatchQueue& queue) { DispatchQueue::setMain(&queue); }
    ~ScopedMainQueue() { DispatchQueue::setMain(nullptr); }
    ScopedMainQueue(const ScopedMainQueue&) = delete;
    ScopedMainQueue& operator=(const ScopedMainQueue&) = delete;
};

} // namespace sela
