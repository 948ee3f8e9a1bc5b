#pragma once

#include "host/CommandLine.h"
#include "host/ObservedMainQueue.h"
#include "host/ViewPainter.h"
#include "platform/uikit/UIWindow.h"

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace sela {

/// Takes the steps of a command line on a window, one after another, each once the screen is at rest. Main
/// thread only; it must outlive the main loop's run.
class StepRunner {
public:
    /// What the steps are taken on. The references must outlive the runner.
    struct Screen {
        UIWindow& window;
        ViewPainter& painter;
        double pixelsPerPoint = 1;
        ObservedMainQueue& queue;

        /// Whether everything that loads by itself is shown; empty: always.
        std::function<bool()> isContentShown;

        /// The name of the view that an `unfold` or `album` step touches.
        std::function<Result<std::string>(const Step&)> viewOfAlbum;
    };

    /// `failure` is absent when all steps were taken, else it says which one could not be, and why.
    using Completion = std::function<void(const std::optional<std::string>& failure)>;

    StepRunner(Screen screen, const std::vector<Step>& steps);

    /// Takes the steps in later turns of the main queue and then calls `completion` on it.
    void start(Completion completion);

    /// The request has ended and the screen will not change any more: the next steps are taken now as far as
    /// they are pictures and trees, and those after them are skipped. `completion` is called before this
    /// returns, unless it was called before.
    void requestEnded();

private:
    void scheduleNext(double seconds);
    void next();
    void finish(const std::optional<std::string>& failure);
    bool isScreenAtRest() const;
    std::optional<std::string> take(const Step& step);

    /// Touches the view of that name; false when it cannot be touched.
    bool touch(const std::string& name);
    bool type(char digit);

    Screen screen_;
    std::deque<Step> steps_;
    Completion completion_;
    bool running_ = false;
    bool waited_ = false;         ///< the step before was a wait, so this one does not wait for the screen
    double previousStepTime_ = 0; ///< of the main queue's clock
};

} // namespace sela
