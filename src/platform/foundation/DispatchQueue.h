#pragma once

#include <functional>

namespace sela {

/// A queue of tasks. Its operations may be called from any thread; tasks given by one thread start in the
/// order in which they were given.
///
/// The main queue runs its tasks one after another on the main thread and keeps the clock by which animations
/// and delays are measured. Which loop stands behind it (a window's, one without a window, a test's virtual
/// clock) is chosen once at start by `setMain`. The global queue runs tasks on a small pool of threads; it
/// stands for the platform's global queue of default quality of service.
class DispatchQueue {
public:
    using Task = std::function<void()>;

    virtual ~DispatchQueue() = default;

    /// The main queue. Asking for it before `setMain` is a programming error and stops the process.
    static DispatchQueue& main();

    /// The global queue of default quality of service; its threads start on first use.
    static DispatchQueue& global();

    /// Makes `queue` the main queue (null: none). The caller keeps it alive for as long.
    static void setMain(DispatchQueue* queue);

    /// Runs `task` on this queue, later; never before this call returns on the main thread.
    virtual void async(Task task) = 0;

    /// Runs `task` on this queue, `seconds` (0 or more) from now or later. Of two tasks that are due at the
    /// same time, the one given first runs first.
    virtual void asyncAfter(double seconds, Task task) = 0;

    /// The queue's clock in seconds: monotonic, from an arbitrary start. In a test it stands still until the
    /// test moves it.
    virtual double now() const = 0;
};

} // namespace sela
