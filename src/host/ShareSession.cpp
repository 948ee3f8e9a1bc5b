#include "host/ShareSession.h"

#include "host/AlbumSteps.h"
#include "share/PrincipalClasses.h"

#include <utility>

namespace sela {

ShareSession::ShareSession(const CommandLine& line, DispatchQueue& loop, const Attachments& attachments)
    : line_(line), scope_(line, loop), context_(makeShareRequest(attachments)),
      root_(makePrincipalViewController(principalClassName)) {
    root_->setExtensionContext(context_);
    root_->loadViewIfNeeded();
    screen_ = shareScreenOf(*root_);
    scope_.window().setRootViewController(root_);
    interruptHandler_ = [this] { leave("The process was asked to end."); };
    report_.names = attachments.names;
    report_.leftOut = attachments.problems;
    context_->onEnd = [this](const ErrorRef& cancellation) { requestEnded(cancellation); };
    signals_.emplace([this] { interruptHandler_(); }, [this] { screen_->stopCopying(); });
}

ShareSession::~ShareSession() {
    context_->onEnd = {};
}

void ShareSession::requestEnded(const ErrorRef& cancellation) {
    // Pictures after the last step show the request's end, and may fail.
    if (steps_)
        steps_->requestEnded();
    if (report_.end != ExitStatus::stepFailed)
        report_.end = cancellation ? ExitStatus::cancelled : ExitStatus::completed;
    if (endHandler_)
        endHandler_();
}

void ShareSession::takeSteps(double pixelsPerPoint, std::function<void()> taken) {
    if (line_.steps.empty())
        return;
    steps_ = std::make_unique<StepRunner>(
        StepRunner::Screen{scope_.window(), scope_.painter(), pixelsPerPoint, scope_.queue(),
                           [this] { return screen_->areImagesShown(); },
                           [this](const Step& step) { return viewOfAlbum(*screen_, step); }},
        line_.steps);
    steps_->start([this, taken = std::move(taken)](const std::optional<std::string>& failure) {
        if (!failure) {
            if (taken)
                taken();
            return;
        }
        report_.end = ExitStatus::stepFailed;
        report_.problem = *failure;
        if (context_->hasEnded())
            *report_.problem += "; the request had ended before";
        else
            cancel(*failure);
    });
}

void ShareSession::cancel(const std::string& why) {
    if (!hasEnded())
        context_->cancelRequestWithError(
            std::make_shared<NSError>(NSCocoaErrorDomain, NSUserCancelledError, why));
}

void ShareSession::giveUp() {
    if (hasEnded())
        return;
    report_.end = ExitStatus::cannotEnd;
    if (endHandler_)
        endHandler_();
}

void ShareSession::leave(const std::string& why) {
    if (hasEnded())
        return;
    const SaveRun::State state = screen_->saveRun().state;
    if (state == SaveRun::State::ended)
        context_->completeRequestReturningItems({}, nullptr);
    else if (state == SaveRun::State::stuck)
        giveUp();
    else
        cancel(why);
}

void ShareSession::leaveOut(const std::vector<LeftOut>& files) {
    report_.leftOut.insert(report_.leftOut.end(), files.begin(), files.end());
}

SaveReport ShareSession::report() const {
    SaveReport report = report_;
    report.run = screen_->saveRun();
    return report;
}

} // namespace sela
