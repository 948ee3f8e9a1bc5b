#pragma once

#include "host/QtApplication.h"
#include "host/ShareSession.h"
#include "host/TerminalProgress.h"
#include "platform/foundation/HeadlessMainLoop.h"

#include <optional>

namespace sela {

/// The extension without a window: its screens are kept in memory, and only the command line's steps touch
/// them. On a terminal, a line says how far saving has come. Main thread only.
class HeadlessRun {
public:
    /// `application` must outlive this.
    HeadlessRun(QtApplication& application, const CommandLine& line, const Attachments& attachments);

    /// Takes the steps and returns when no work is left. A request that has not ended by then is cancelled,
    /// or given up when a save run had begun.
    SaveReport run();

private:
    QtApplication& application_;
    const double pixelsPerPoint_;
    const bool hasSteps_;
    HeadlessMainLoop loop_;
    ShareSession session_;
    std::optional<TerminalProgress> progress_;
};

} // namespace sela
