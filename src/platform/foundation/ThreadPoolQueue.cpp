#include "platform/foundation/ThreadPoolQueue.h"

#include "platform/foundation/BackgroundWork.h"
#include "platform/foundation/MonotonicClock.h"

#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/thread_pool.hpp>
#include <chrono>
#include <utility>

namespace sela {

struct ThreadPoolQueue::Pool {
    explicit Pool(int threads) : executor(static_cast<std::size_t>(threads)) {}

    boost::asio::thread_pool executor;
};

ThreadPoolQueue::ThreadPoolQueue(int threads) : pool_(std::make_unique<Pool>(threads)) {}

ThreadPoolQueue::~ThreadPoolQueue() {
    pool_->executor.join();
}

void ThreadPoolQueue::async(Task task) {
    boost::asio::post(pool_->executor,
                      [task = std::move(task), token = std::make_shared<BackgroundWork>()] { task(); });
}

void ThreadPoolQueue::asyncAfter(double seconds, Task task) {
    auto timer = std::make_shared<boost::asio::steady_timer>(pool_->executor);
    timer->expires_after(std::chrono::duration_cast<std::chrono::steady_clock::duration>(
        std::chrono::duration<double>(seconds)));
    timer->async_wait([task = std::move(task), timer,
                       token = std::make_shared<BackgroundWork>()](const boost::system::error_code& error) {
        if (!error)
            task();
    });
}

double ThreadPoolQueue::now() const {
    return monotonicSeconds();
}

DispatchQueue& DispatchQueue::global() {
    // Two threads: one copies while another may load; more would only compete for the disk. The queue is
    // never destroyed, since a task may still run when main ends.
    static auto* const queue = new ThreadPoolQueue(2);
    return *queue;
}

} // namespace sela
