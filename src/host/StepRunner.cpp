#include "host/StepRunner.h"

#include "host/AlbumSteps.h"
#include "host/Snapshot.h"
#include "host/TreeWriter.h"
#include "host/ViewLocator.h"
#include "platform/foundation/BackgroundWork.h"
#include "platform/foundation/Error.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <utility>

namespace sela {

namespace {

/// Seconds between two checks of the time, or of a screen that is not at rest yet: no task stays queued for
/// longer when the request ends.
constexpr double lookInterval = 0.005;

bool isBackgroundAtWork() {
    const std::lock_guard lock(BackgroundWork::mutex());
    return BackgroundWork::outstanding() > 0;
}

/// Writes a step's output to a file; returns why it cannot be written, or nothing.
std::optional<std::string> write(const std::string& bytes, const char* what, const std::string& path) {
    errno = 0;
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    if (file << bytes << std::flush)
        return std::nullopt;
    const ErrorRef error = NSError::posix(errno == 0 ? EIO : errno, path);
    return std::string("cannot write the ") + what + " " + path + ": " + error->localizedFailureReason();
}

} // namespace

StepRunner::StepRunner(Screen screen, const std::vector<Step>& steps)
    : screen_(std::move(screen)), steps_(steps.begin(), steps.end()) {}

void StepRunner::start(Completion completion) {
    completion_ = std::move(completion);
    running_ = true;
    previousStepTime_ = screen_.queue.now();
    scheduleNext(0);
}

void StepRunner::scheduleNext(double seconds) {
    screen_.queue.inner().asyncAfter(seconds, [this] { next(); });
}

void StepRunner::next() {
    if (!running_)
        return;
    if (steps_.empty()) {
        finish(std::nullopt);
        return;
    }
    Step& step = steps_.front();
    const double now = screen_.queue.now();
    if (step.kind == Step::Kind::wait) {
        if (const double end = previousStepTime_ + step.seconds; now < end) {
            scheduleNext(std::min(end - now, lookInterval));
            return;
        }
        previousStepTime_ += step.seconds;
        waited_ = true;
    } else {
        screen_.window.prepareFrame();
        if (step.kind != Step::Kind::tapNow && !waited_ && !isScreenAtRest()) {
            scheduleNext(lookInterval);
            return;
        }
        const std::optional<std::string> failure = take(step);
        if (failure || !running_) {
            finish(failure);
            return;
        }
        previousStepTime_ = now;
        if (step.kind == Step::Kind::type && step.digits.size() > 1) {
            step.digits.removeFirst();
            if (!step.unasked.empty())
                step.unasked = "the digits are more than the keypad asks for";
            scheduleNext(0);
            return;
        }
        waited_ = false;
    }
    steps_.pop_front();
    scheduleNext(0);
}

/// Does not wait for missing content when no background work is left that could deliver it.
bool StepRunner::isScreenAtRest() const {
    const bool contentCanCome = isBackgroundAtWork();
    if (!screen_.window.isIdle() || screen_.queue.pendingTasks() > 0)
        return false;
    return !contentCanCome || !screen_.isContentShown || screen_.isContentShown();
}

std::optional<std::string> StepRunner::take(const Step& step) {
    switch (step.kind) {
    case Step::Kind::tap:
    case Step::Kind::tapNow:
        if (!touch(step.argument))
            return step.argument + " is not on the screen, or is hidden or covered";
        return std::nullopt;
    case Step::Kind::type:
        // The error must not reveal the digit.
        if (!step.digits.empty() && !type(step.digits.exposed().front()))
            return step.unasked.empty() ? "a key to type is not on the screen, or is hidden or covered"
                                        : step.unasked;
        return std::nullopt;
    case Step::Kind::snapshot:
        return write(Snapshot::png(screen_.window, screen_.painter, screen_.pixelsPerPoint), "picture",
                     step.argument);
    case Step::Kind::tree:
        return write(TreeWriter::json(screen_.window) + "\n", "tree", step.argument);
    case Step::Kind::unfold:
    case Step::Kind::album: {
        const Result<std::string> view = screen_.viewOfAlbum(step);
        if (!view)
            return view.error()->localizedDescription();
        if (!touch(view.value()))
            return lockedAlbum(step)->localizedDescription();
        return std::nullopt;
    }
    case Step::Kind::wait:
        return std::nullopt;
    }
    return std::nullopt;
}

bool StepRunner::touch(const std::string& name) {
    const std::optional<CGPoint> point = ViewLocator::tapPoint(screen_.window, name);
    if (point)
        screen_.window.tap(*point);
    return point.has_value();
}

bool StepRunner::type(char digit) {
    const std::optional<ViewLocator::KeyTarget> key =
        ViewLocator::keyTarget(screen_.window, std::string(1, digit));
    if (key)
        screen_.window.tap(key->tapPoint);
    return key.has_value();
}

void StepRunner::requestEnded() {
    std::optional<std::string> failure;
    while (running_ && !failure && !steps_.empty()) {
        const Step step = steps_.front();
        const bool shows = step.kind == Step::Kind::snapshot || step.kind == Step::Kind::tree;
        if (!shows && step.kind != Step::Kind::wait)
            break;
        steps_.pop_front();
        if (shows)
            failure = take(step);
    }
    finish(failure);
}

void StepRunner::finish(const std::optional<std::string>& failure) {
    running_ = false;
    if (const Completion completion = std::exchange(completion_, {}))
        completion(failure);
}

} // namespace sela
