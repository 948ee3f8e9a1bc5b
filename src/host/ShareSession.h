#pragma once

#include "host/CommandLine.h"
#include "host/ExitStatus.h"
#include "host/HostScope.h"
#include "host/StepRunner.h"
#include "platform/extension/NSExtensionContext.h"
#include "share/SelaShareExtensionVc.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace sela {

/// How a run of the extension ended, for whoever started it.
struct RunResult {
    ExitStatus status = ExitStatus::cancelled;

    /// The step that failed and why, in a line; absent when none did.
    std::optional<std::string> problem;

    SaveRun saveRun;
};

/// One share request on the extension's screens, from its start to its end, with or without a window: what a
/// `WindowedRun` and a `HeadlessRun` have in common. Main thread only.
class ShareSession {
public:
    /// Starts the principal screen with the request and sets it into the scope's window. `loop` becomes the
    /// main queue and must outlive this.
    ShareSession(const CommandLine& line, DispatchQueue& loop, std::shared_ptr<NSExtensionContext> context);
    ~ShareSession();
    ShareSession(const ShareSession&) = delete;
    ShareSession& operator=(const ShareSession&) = delete;

    HostScope& scope() { return scope_; }
    SelaShareExtensionVc& screen() { return *screen_; }

    /// Whether the request has ended, or was given up.
    bool hasEnded() const { return context_->hasEnded() || result_.status == ExitStatus::cannotEnd; }

    /// Called once, when the request ends or is given up.
    void setEndHandler(std::function<void()> handler) { endHandler_ = std::move(handler); }

    /// Takes the command line's steps, one after another, in later turns of the main queue, and calls `taken`
    /// after the last one; for none, neither happens. A step that fails cancels the request: only the file
    /// that is under way is still added.
    void takeSteps(double pixelsPerPoint, std::function<void()> taken);

    /// Cancels the request for a reason; nothing happens when it has ended or was given up.
    void cancel(const std::string& why);

    /// Leaves the request as it is, since nothing can end it any more; nothing happens when it has ended.
    void giveUp();

    /// What is to be told, once the main loop has come to its end.
    RunResult result() const;

private:
    void requestEnded(const ErrorRef& cancellation);

    const CommandLine line_;
    HostScope scope_;
    const std::shared_ptr<NSExtensionContext> context_;
    std::shared_ptr<UIViewController> root_;
    SelaShareExtensionVc* screen_ = nullptr; ///< inside `root_`
    std::unique_ptr<StepRunner> steps_;
    std::function<void()> endHandler_;
    RunResult result_;
};

} // namespace sela
