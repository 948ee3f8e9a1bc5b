#include "host/WindowedRun.h"

#include "host/LocalizedReason.h"
#include "host/MimeAttachments.h"
#include "host/ReasonSummary.h"
#include "host/VaultState.h"
#include "platform/foundation/Bundle.h"

#include <algorithm>
#include <utility>

namespace sela {

namespace {

/// Seconds after which attachments are loaded even when no frame was shown, as for a window that opens behind
/// others or on another desktop.
constexpr double longestWaitForFrame = 0.5;

/// Seconds of saving before its progress is shown, so that a short run shows none.
constexpr double progressDelay = 0.5;

/// Seconds of saving after which the window can be put aside.
constexpr double longSaving = 5;

/// Seconds in which the desktop is told that a window is hidden.
constexpr double hidingTime = 0.1;

std::string localized(std::string_view key) {
    return Bundle::main().localizedString(key);
}

/// The message that files are left out, and why.
std::string textOf(const std::vector<LeftOut>& leftOut) {
    ReasonSummary reasons;
    for (const LeftOut& file : leftOut)
        reasons.add(file.shortName(), localizedReason(*file.reason));
    return localized("Some files cannot be added.") + "\n" + reasons.text();
}

} // namespace

WindowedRun::WindowedRun(QtApplication& application, const CommandLine& line, const Attachments& attachments)
    : application_(application), line_(line), totalSize_(attachments.totalSize),
      session_(line, loop_, attachments),
      notice_(session_.scope().window(), session_.scope().placement().scale()),
      window_(session_.scope().window(), session_.scope().painter(), line, session_.scope().placement()) {
    session_.setEndHandler([this] { requestEnded(); });
    session_.setInterruptHandler([this] { leave(); });
    session_.screen().setSaveObserver([this](const SaveRun& run) { showSaving(run); });
    window_.setCloseHandler([this] { close(); });
    window_.setResizeHandler([this] { notice_.layOut(); });
    window_.setContentHandler({[this] { return !session_.screen().saveRun().hasBegun(); },
                               [this](const QMimeData* data) { take(data); }});
    // Starting the helpers earlier would compete with the card's first frame for the processors.
    window_.setFirstFrameHandler([this] {
        session_.scope().loading().open();
        showNextStep();
    });
}

SaveReport WindowedRun::run() {
    loop_.asyncAfter(longestWaitForFrame, [this] { session_.scope().loading().open(); });
    window_.open();
    application_.waitForFonts();
    session_.takeSteps(line_.hasScale ? line_.scale : window_.pixelsPerPoint(), [this] {
        endsWhenStuck_ = true;
        showSaving(session_.screen().saveRun());
    });
    loop_.run();
    session_.leave("Nothing is left to be done.");
    return session_.report();
}

bool WindowedRun::isSavingForLong() const {
    return savingStart_ > 0 && loop_.now() >= savingStart_ + longSaving;
}

/// Says what the user should do when files, vault or albums are missing.
void WindowedRun::showNextStep() {
    const VaultState vault = vaultState();
    if (vault == VaultState::absent)
        notice_.keep({.text = localized("Please launch the main Sela app first.")});
    else if (vault == VaultState::unreadable)
        notice_.keep({.text = localized("UserDefaults is nil")});
    else if (session_.screen().intake().itemsCount() == 0)
        notice_.keep({.text = localized("Paste or drop the files that you want to add.")});
    else if (const std::vector<LeftOut> leftOut = session_.report().leftOut; !leftOut.empty())
        notice_.show(textOf(leftOut));
    else if (vault == VaultState::withoutAlbums)
        notice_.show(localized("There are no albums yet. Files go to the default album."));
}

void WindowedRun::close() {
    if (session_.screen().saveRun().state == SaveRun::State::saving && isSavingForLong())
        putAside();
    else
        leave();
}

/// Ends the run without waiting until a notice was read.
void WindowedRun::leave() {
    isOutcomeRead_ = true;
    if (session_.hasEnded())
        finish();
    else
        session_.leave("The window was closed.");
}

void WindowedRun::take(const QMimeData* data) {
    const MimeAttachments found = MimeAttachments::in(data);
    const Attachments& attachments = found.attachments;
    if (!attachments.providers.empty() && session_.screen().append(attachments.providers)) {
        totalSize_ += attachments.totalSize;
        notice_.hide();
    }
    session_.leaveOut(attachments.problems);
    if (!attachments.problems.empty())
        notice_.show(textOf(attachments.problems));
    else if (found.onlyText)
        notice_.show(localized("Text cannot be added, only files and pictures."));
    else if (attachments.providers.empty())
        notice_.show(localized("There is nothing to add on the clipboard."));
}

void WindowedRun::showSaving(const SaveRun& run) {
    switch (run.state) {
    case SaveRun::State::waiting:
        break;
    case SaveRun::State::saving:
        if (savingStart_ == 0)
            savingStart_ = loop_.now();
        if (!isAside_ && loop_.now() >= savingStart_ + progressDelay)
            showProgress(run);
        break;
    case SaveRun::State::stuck:
        if (endsWhenStuck_)
            session_.giveUp();
        else if (!isAside_)
            showOutcome([this] { session_.giveUp(); });
        break;
    case SaveRun::State::ended:
        // In the next turn, since a run may go on after an end was reported.
        loop_.async([this] { showEnd(); });
        break;
    }
}

/// "2 / 5 · 43 %", which needs no translation.
void WindowedRun::showProgress(const SaveRun& run) {
    const double bytes = static_cast<double>(run.savedBytes + run.copiedBytes);
    // A file that grows while it is copied, or a picture without a file, may exceed the known total.
    const double part = totalSize_ > 0 ? std::min(bytes / static_cast<double>(totalSize_), 1.0) : 0;
    const auto count = static_cast<std::int64_t>(run.outcomes.size());
    const std::int64_t number = std::min(run.currentAttachmentIndex + 1, count);
    Notice::Content content{.text = std::to_string(number) + " / " + std::to_string(count) + "  ·  " +
                                    std::to_string(static_cast<int>(part * 100)) + " %",
                            .progress = part};
    if (isSavingForLong()) {
        content.button = localized("Continue in Background");
        content.action = [this] { putAside(); };
    }
    notice_.keep(content);
}

/// The screen says "Done" in any case and soon ends the request; when files were not added, the window stays
/// until the notice about them was read.
void WindowedRun::showEnd() {
    if (session_.screen().saveRun().state != SaveRun::State::ended || std::exchange(isEndShown_, true))
        return;
    notice_.hide();
    if (isAside_ || session_.hasEnded() || !session_.report().isIncomplete())
        return;
    isOutcomeRead_ = false;
    const auto read = [this] {
        notice_.hide();
        isOutcomeRead_ = true;
        if (session_.hasEnded())
            finish();
    };
    showOutcome(read);
    loop_.asyncAfter(Notice::duration, read);
}

/// What became of the files, and a button that calls `close`.
void WindowedRun::showOutcome(std::function<void()> close) {
    notice_.keep(
        {.text = session_.report().summary(), .button = localized("Close"), .action = std::move(close)});
    window_.growTo(notice_.heightBesideTexts());
}

/// Saving goes on without the window, and without Qt's events: Qt ends the process when the display does, as
/// at a logout.
void WindowedRun::putAside() {
    isAside_ = true;
    notice_.hide();
    window_.hide();
    loop_.asyncAfter(hidingTime, [this] { loop_.finish(); });
}

void WindowedRun::requestEnded() {
    // The loop waits for pending loads, which need the gate to be open.
    session_.scope().loading().open();
    if (isOutcomeRead_)
        finish();
}

void WindowedRun::finish() {
    window_.hide();
    loop_.finish();
}

} // namespace sela
