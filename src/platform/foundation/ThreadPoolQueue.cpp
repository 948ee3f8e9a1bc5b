#include "platform/foundation/ThreadPoolQueue.h"

#include "platform/foundation/BackgroundWork.h"
#include "platform/foundation/FatalError.h"
#include "platform/foundation/MonotonicClock.h"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace sela {

namespace {

/// A task with its token, which comes first, to be destroyed last: work whose task still holds a lock or a
/// file has not ended.
struct CountedTask {
    explicit CountedTask(DispatchQueue::Task given) : task(std::move(given)) {}

    std::shared_ptr<const BackgroundWork> token = std::make_shared<const BackgroundWork>();
    DispatchQueue::Task task;
};

} // namespace

struct ThreadPoolQueue::Pool {
    explicit Pool(int count) : context(count), guard(context.get_executor()) {
        // Fewer threads than requested suffice; without any, no task would ever run.
        try {
            for (int i = 0; i < count; ++i)
                threads.emplace_back([this] { context.run(); });
        } catch (const std::system_error& error) {
            if (threads.empty())
                fatalError(std::string("a queue can have no thread: ") + error.what());
        }
    }

    ~Pool() {
        setSuspended(false);
        guard.reset();
        for (std::thread& thread : threads)
            thread.join();
    }

    void setSuspended(bool suspends) {
        {
            const std::lock_guard lock(mutex);
            isSuspended = suspends;
        }
        resumed.notify_all();
    }

    void run(const Task& task) {
        {
            std::unique_lock lock(mutex);
            resumed.wait(lock, [this] { return !isSuspended; });
        }
        task();
    }

    std::mutex mutex;
    std::condition_variable resumed;
    bool isSuspended = false;
    boost::asio::io_context context;
    boost::asio::executor_work_guard<boost::asio::io_context::executor_type> guard;
    std::vector<std::thread> threads;
};

ThreadPoolQueue::ThreadPoolQueue(int threads) : pool_(std::make_unique<Pool>(threads)) {}

ThreadPoolQueue::~ThreadPoolQueue() = default;

void ThreadPoolQueue::async(Task task) {
    boost::asio::post(pool_->context, [pool = pool_.get(), counted = CountedTask(std::move(task))] {
        pool->run(counted.task);
    });
}

void ThreadPoolQueue::asyncAfter(double seconds, Task task) {
    auto timer = std::make_shared<boost::asio::steady_timer>(pool_->context);
    timer->expires_after(std::chrono::duration_cast<std::chrono::steady_clock::duration>(
        std::chrono::duration<double>(seconds)));
    timer->async_wait([pool = pool_.get(), counted = CountedTask(std::move(task)),
                       timer](const boost::system::error_code& error) {
        if (!error)
            pool->run(counted.task);
    });
}

double ThreadPoolQueue::now() const {
    return monotonicSeconds();
}

void ThreadPoolQueue::suspend() {
    pool_->setSuspended(true);
}

void ThreadPoolQueue::resume() {
    pool_->setSuspended(false);
}

DispatchQueue& DispatchQueue::global() {
    // Two threads: one may load while the other copies; more would only compete for the disk. The queue is
    // never destroyed, since a task may still run when main ends.
    static auto* const queue = new ThreadPoolQueue(2);
    return *queue;
}

} // namespace sela
