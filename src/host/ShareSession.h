#pragma once

#include "host/CommandLine.h"
#include "host/HostScope.h"
#include "host/SaveReport.h"
#include "host/ShareRequest.h"
#include "host/StepRunner.h"
#include "host/TerminationSignals.h"
#include "platform/extension/NSExtensionContext.h"
#include "share/SelaShareExtensionVc.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace sela {

/// One share request on the extension's screens, from its start to its end, with or without a window: what a
/// `WindowedRun` and a `HeadlessRun` have in common. Main thread only.
class ShareSession {
public:
    /// Starts the principal screen with a request of these attachments and shows it in the scope's window.
    /// `loop` becomes the main queue and must outlive this.
    ShareSession(const CommandLine& line, DispatchQueue& loop, const Attachments& attachments);
    ~ShareSession();
    ShareSession(const ShareSession&) = delete;
    ShareSession& operator=(const ShareSession&) = delete;

    HostScope& scope() { return scope_; }
    SelaShareExtensionVc& screen() { return *screen_; }

    /// Whether the request has ended, or was given up.
    bool hasEnded() const { return context_->hasEnded() || report_.end == ExitStatus::cannotEnd; }

    /// Called once, when the request ends or is given up.
    void setEndHandler(std::function<void()> handler) { endHandler_ = std::move(handler); }

    /// Takes the command line's steps, one after another, in later turns of the main queue, and calls `taken`
    /// after the last one; for none, neither happens. A step that fails cancels the request: only the file
    /// that is being copied is still added.
    void takeSteps(double pixelsPerPoint, std::function<void()> taken);

    /// Cancels the request for a reason; nothing happens when it has ended or was given up.
    void cancel(const std::string& why);

    /// Gives the request up, since nothing can end it any more; nothing happens when it has ended.
    void giveUp();

    /// Ends the request now, for a reason: completes it when the save run has ended, gives it up when the run
    /// is stuck, and cancels it otherwise. Nothing happens when it has ended.
    void leave(const std::string& why);

    /// Called on the main queue when a signal asks the process to end; by default it leaves the session. A
    /// copy that still runs a second later is stopped.
    void setInterruptHandler(std::function<void()> handler) { interruptHandler_ = std::move(handler); }

    /// Reports files as well that were to join the request and cannot be added.
    void leaveOut(const std::vector<LeftOut>& files);

    /// What has been done with the files so far.
    SaveReport report() const;

private:
    void requestEnded(const ErrorRef& cancellation);

    const CommandLine line_;
    HostScope scope_;
    const std::shared_ptr<NSExtensionContext> context_;
    std::shared_ptr<UIViewController> root_;
    SelaShareExtensionVc* screen_ = nullptr; ///< inside `root_`
    std::unique_ptr<StepRunner> steps_;
    std::function<void()> endHandler_;
    std::function<void()> interruptHandler_;
    SaveReport report_;                         ///< without the run
    std::optional<TerminationSignals> signals_; ///< made last, since its thread uses the screen
};

} // namespace sela
