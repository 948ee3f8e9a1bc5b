#include "host/HeadlessRun.h"

namespace sela {

HeadlessRun::HeadlessRun(QtApplication& application, const CommandLine& line, const Attachments& attachments)
    : application_(application), pixelsPerPoint_(line.scale), hasSteps_(!line.steps.empty()),
      loop_(line.album ? HeadlessMainLoop::Idle::isSkipped : HeadlessMainLoop::Idle::waits),
      session_(line, loop_, attachments) {
    if (line.output != CommandLine::Output::normal || !TerminalProgress::isPossible())
        return;
    progress_.emplace(attachments.totalSize);
    session_.screen().setSaveObserver([this](const SaveRun& run) { progress_->show(run); });
}

SaveReport HeadlessRun::run() {
    application_.waitForFonts();
    session_.takeSteps(pixelsPerPoint_, {});
    loop_.run();
    if (session_.screen().saveRun().hasBegun())
        session_.giveUp();
    const bool isUntouched = !hasSteps_ && !session_.hasEnded();
    session_.cancel("Nothing is left to be done.");
    SaveReport report = session_.report();
    if (isUntouched)
        report.problem = "nothing was added, since no step says what to press, such as --tap addButton";
    return report;
}

} // namespace sela
