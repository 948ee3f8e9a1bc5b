#pragma once

#include "platform/foundation/DispatchQueue.h"
#include "platform/foundation/TaskList.h"

namespace sela {

/// The main queue of tests: its clock moves only when the test moves it, so no test ever sleeps. All of it
/// but `async` and `asyncAfter` is called on the test's thread, which is the main thread.
class VirtualMainLoop : public DispatchQueue {
public:
    void async(Task task) override;
    void asyncAfter(double seconds, Task task) override;
    double now() const override;

    /// Moves the clock by `seconds`, running each task that comes due at its own time, and waits for
    /// background work so that the tasks that it posts run too.
    void advance(double seconds);

    /// Runs what is due now, waiting for background work, until nothing more is due; the clock stands still.
    void runPending();

    /// Moves the clock from due task to due task until none is left. Does not return if a task repeats itself
    /// forever.
    void runUntilIdle();

private:
    void runUpTo(double end);

    TaskList tasks_;
    double now_ = 0;
};

} // namespace sela
