#pragma once

#include "host/CommandLine.h"
#include "host/FontPreparation.h"

#include <QGuiApplication>

#include <optional>

namespace sela {

/// Qt in this process: its application object, its messages and the fonts. One at a time, on the main thread.
class QtApplication {
public:
    /// Ends the process with `badArguments`, and a line on standard error, when the display cannot be opened.
    /// Must be made before there is a second thread, since it sets environment variables that Qt reads.
    explicit QtApplication(const CommandLine& line);

    /// Waits for the fonts to be listed.
    ~QtApplication() = default;

    QtApplication(const QtApplication&) = delete;
    QtApplication& operator=(const QtApplication&) = delete;

    /// Returns when texts can be laid out without reading fonts.
    void waitForFonts() { fonts_->wait(); }

private:
    std::optional<QGuiApplication> application_;

    /// Destroyed first: the thread that lists fonts needs the application object until it ends.
    std::optional<FontPreparation> fonts_;
};

} // namespace sela
