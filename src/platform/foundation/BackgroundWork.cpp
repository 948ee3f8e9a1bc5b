#include "platform/foundation/BackgroundWork.h"

namespace sela {

namespace {

int tokensAlive = 0;

} // namespace

BackgroundWork::BackgroundWork() {
    const std::lock_guard lock(mutex());
    ++tokensAlive;
}

BackgroundWork::~BackgroundWork() {
    const std::lock_guard lock(mutex());
    if (--tokensAlive == 0)
        changed().notify_all();
}

int BackgroundWork::outstanding() {
    return tokensAlive;
}

// Neither is ever destroyed: threads of the global queue may outlive the end of main.
std::mutex& BackgroundWork::mutex() {
    static auto* const mutex = new std::mutex;
    return *mutex;
}

std::condition_variable& BackgroundWork::changed() {
    static auto* const condition = new std::condition_variable;
    return *condition;
}

} // namespace sela
