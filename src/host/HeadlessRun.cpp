#include "host/HeadlessRun.h"

#include <utility>

namespace sela {

HeadlessRun::HeadlessRun(QtApplication& application, const CommandLine& line,
                         std::shared_ptr<NSExtensionContext> context, std::int64_t totalSize)
    : application_(application), pixelsPerPoint_(line.scale), session_(line, loop_, std::move(context)) {
    if (line.output != CommandLine::Output::normal || !TerminalProgress::isPossible())
        return;
    progress_.emplace(totalSize);
    session_.screen().setSaveObserver([this](const SaveRun& run) { progress_->show(run); });
}

RunResult HeadlessRun::run() {
    application_.waitForFonts();
    session_.takeSteps(pixelsPerPoint_, {});
    loop_.run();
    if (session_.screen().saveRun().hasBegun())
        session_.giveUp();
    session_.cancel("Nothing is left to be done.");
    return session_.result();
}

} // namespace sela
