#pragma once

#include "host/Notice.h"
#include "host/QtApplication.h"
#include "host/QtMainLoop.h"
#include "host/ShareSession.h"
#include "host/ShareWindow.h"

#include <cstdint>
#include <functional>

class QMimeData;

namespace sela {

/// The extension in a window of the desktop, used by a person and by the command line's steps. What is pasted
/// or dropped joins the request. Main thread only.
class WindowedRun {
public:
    /// `application` must outlive this.
    WindowedRun(QtApplication& application, const CommandLine& line, const Attachments& attachments);

    /// Shows the card and returns when the request has ended and no work is left. Closing the window cancels
    /// the request while something can still be added, and completes it after that. Saving that is stuck ends
    /// the run when the window is closed, or the last of the command line's steps was taken.
    SaveReport run();

    /// Whether the user put the window aside while saving went on, and so did not see the end.
    bool wasPutAside() const { return isAside_; }

private:
    void showNextStep();
    void close();
    void leave();
    void take(const QMimeData* data);
    void showSaving(const SaveRun& run);
    void showProgress(const SaveRun& run);
    void showEnd();
    void showOutcome(std::function<void()> close);
    void putAside();
    void requestEnded();
    void finish();

    /// Whether saving has taken so long that the window may be put aside.
    bool isSavingForLong() const;

    QtApplication& application_;
    const CommandLine line_;
    std::int64_t totalSize_; ///< of the files, in bytes, as far as it is known
    QtMainLoop loop_;
    ShareSession session_;
    Notice notice_;
    ShareWindow window_;
    double savingStart_ = 0; ///< by the loop's clock; 0 before the first attachment
    bool endsWhenStuck_ = false;
    bool isAside_ = false;
    bool isEndShown_ = false;
    bool isOutcomeRead_ = true; ///< false while a notice says what was not added
};

} // namespace sela
