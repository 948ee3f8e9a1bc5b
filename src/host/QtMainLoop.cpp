#include "host/QtMainLoop.h"

#include "platform/foundation/BackgroundWork.h"
#include "platform/foundation/MonotonicClock.h"

#include <QCoreApplication>
#include <QEvent>

#include <algorithm>
#include <cmath>
#include <utility>

namespace sela {

namespace {

/// Longest sleep of the timer in milliseconds; a later task is waited for in several sleeps.
constexpr double longestSleep = 60'000;

QEvent::Type wakeEvent() {
    static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
    return type;
}

} // namespace

void QtMainLoop::async(Task task) {
    asyncAfter(0, std::move(task));
}

void QtMainLoop::asyncAfter(double seconds, Task task) {
    const std::lock_guard lock(BackgroundWork::mutex());
    tasks_.add(now() + seconds, std::move(task));
    wake();
}

double QtMainLoop::now() const {
    return monotonicSeconds();
}

/// The caller holds the mutex.
void QtMainLoop::wake() {
    if (!std::exchange(wakePosted_, true))
        QCoreApplication::postEvent(this, new QEvent(wakeEvent()));
}

bool QtMainLoop::event(QEvent* event) {
    if (event->type() != wakeEvent())
        return QObject::event(event);
    runDueTasks();
    return true;
}

void QtMainLoop::timerEvent(QTimerEvent*) {
    runDueTasks();
}

/// Runs the tasks that are due now; tasks that they add run in the loop's next turn, so that events are
/// handled in between.
void QtMainLoop::runDueTasks() {
    std::unique_lock lock(BackgroundWork::mutex());
    wakePosted_ = false;
    const double start = now();
    while (std::optional<Task> task = tasks_.takeDue(start)) {
        lock.unlock();
        (*task)();
        task.reset();
        lock.lock();
    }
    if (const std::optional<double> due = tasks_.nextDueTime()) {
        const double wait = std::clamp(std::ceil((*due - now()) * 1000), 0.0, longestSleep);
        timer_.start(static_cast<int>(wait), Qt::PreciseTimer, this);
    } else {
        timer_.stop();
    }
}

void QtMainLoop::run() {
    if (!finished_)
        QCoreApplication::exec();
    tasks_.drain([this] { return now(); });
}

void QtMainLoop::finish() {
    finished_ = true;
    QCoreApplication::exit();
}

} // namespace sela
