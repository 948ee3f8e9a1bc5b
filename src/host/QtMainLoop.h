#pragma once

#include "platform/foundation/DispatchQueue.h"
#include "platform/foundation/TaskList.h"

#include <QBasicTimer>
#include <QObject>

namespace sela {

/// The main queue of a program with a window: its tasks run between the events of Qt's loop, by the monotonic
/// clock. Made after the QGuiApplication, on the thread that made it.
class QtMainLoop : public QObject, public DispatchQueue {
public:
    void async(Task task) override;
    void asyncAfter(double seconds, Task task) override;
    double now() const override;

    /// Runs events and tasks until `finish`, and then, without events, the tasks that background work still
    /// posts, so that no work is interrupted. Tasks that are not due by then never run. Main thread.
    void run();

    /// Makes `run` return. Main thread.
    void finish();

protected:
    bool event(QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    void wake();
    void runDueTasks();

    TaskList tasks_;
    bool wakePosted_ = false;
    bool finished_ = false;
    QBasicTimer timer_;
};

} // namespace sela
