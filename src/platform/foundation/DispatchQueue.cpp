#include "platform/foundation/DispatchQueue.h"

#include "platform/foundation/FatalError.h"

#include <atomic>

namespace sela {

namespace {

std::atomic<DispatchQueue*> mainQueue = nullptr;

} // namespace

DispatchQueue& DispatchQueue::main() {
    DispatchQueue* const queue = mainQueue;
    if (!queue)
        fatalError("DispatchQueue: there is no main queue yet");
    return *queue;
}

void DispatchQueue::setMain(DispatchQueue* queue) {
    mainQueue = queue;
}

} // namespace sela
