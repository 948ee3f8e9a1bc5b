#include "host/WindowedRun.h"

#include "host/MimeAttachments.h"
#include "platform/foundation/Bundle.h"

namespace sela {

namespace {

/// Seconds after which attachments are loaded even though no frame was shown, as in a window that opens
/// behind others or on another desktop.
constexpr double longestWaitForFrame = 0.5;

} // namespace

WindowedRun::WindowedRun(QtApplication& application, const CommandLine& line, const Attachments& attachments)
    : application_(application), line_(line), session_(line, loop_, attachments),
      notice_(session_.scope().window()),
      window_(session_.scope().window(), session_.scope().painter(), line) {
    session_.setEndHandler([this] { end(); });
    window_.setCloseHandler([this] { close(); });
    window_.setContentHandler({[this] { return !session_.screen().saveRun().hasBegun(); },
                               [this](const QMimeData* data) { take(data); }});
    // The helpers' start would take the processors from the card's.
    window_.setFirstFrameHandler([this] { session_.scope().loading().open(); });
}

SaveReport WindowedRun::run() {
    loop_.asyncAfter(longestWaitForFrame, [this] { session_.scope().loading().open(); });
    window_.open();
    application_.waitForFonts();
    session_.takeSteps(line_.hasScale ? line_.scale : window_.pixelsPerPoint(), [this] {
        const auto giveUpIfStuck = [this](const SaveRun& run) {
            if (run.state == SaveRun::State::stuck)
                session_.giveUp();
        };
        session_.screen().setSaveObserver(giveUpIfStuck);
        giveUpIfStuck(session_.screen().saveRun());
    });
    loop_.run();
    session_.cancel("The display was closed.");
    return session_.report();
}

void WindowedRun::close() {
    const SaveRun::State state = session_.screen().saveRun().state;
    if (state == SaveRun::State::ended)
        session_.complete();
    else if (state == SaveRun::State::stuck)
        session_.giveUp();
    else
        session_.cancel("The window was closed.");
}

void WindowedRun::take(const QMimeData* data) {
    const MimeAttachments found = MimeAttachments::in(data);
    const Attachments& attachments = found.attachments;
    if (!attachments.providers.empty())
        session_.screen().append(attachments.providers);
    if (!attachments.problems.empty())
        notice_.show(Bundle::main().localizedString("Some files cannot be added."));
    else if (found.onlyText)
        notice_.show(Bundle::main().localizedString("Text cannot be added, only files and pictures."));
    else if (attachments.providers.empty())
        notice_.show(Bundle::main().localizedString("There is nothing to add on the clipboard."));
}

/// The loop waits for loading that is under way, which needs the gate to be open.
void WindowedRun::end() {
    session_.scope().loading().open();
    window_.hide();
    loop_.finish();
}

} // namespace sela
