#pragma once

#include "platform/foundation/Error.h"
#include "platform/foundation/Secret.h"

#include <optional>
#include <string>
#include <vector>

namespace sela {

/// One step that `sela-share` takes by itself, as a person would by hand.
struct Step {
    enum class Kind {
        tap,    ///< touch up inside on the topmost visible view of that name, once the screen is idle
        tapNow, ///< the same without waiting
        type,   ///< a tap per digit of `digits`, which come from the file of the argument where there is one
        wait,   ///< real time in seconds, counted from the step before; the next step does not wait either
        snapshot, ///< a picture of the screen into a PNG file
        tree,     ///< the view tree as JSON into a file
        unfold,   ///< a tap that shows the albums inside the album of that path
        album,    ///< a tap on the row of the album of that path
    };

    Kind kind;
    std::string argument = {};
    double seconds = 0;       ///< of a `wait`
    Secret digits = {};       ///< of a `type`
    std::string unasked = {}; ///< of a `type`: what it means that there are no keys

    bool operator==(const Step&) const = default;
};

/// What the command line of `sela-share` asks for. A value.
struct CommandLine {
    enum class Appearance { automatic, light, dark };
    enum class Contrast { automatic, normal, high };

    /// What is printed on standard error besides errors.
    enum class Output {
        normal, ///< the log's lines; on a terminal none of them, and without a window how far saving has come
        quiet,  ///< nothing
        verbose, ///< the log's lines on a terminal too
    };

    std::vector<std::string> attachments; ///< paths, file URLs, or "-" for a picture on standard input
    std::optional<double> screenWidth;    ///< points; absent without --screen
    std::optional<double> screenHeight;
    double scale = 1; ///< pixels per point of pictures and windows without a display's own
    bool hasScale = false;
    Appearance appearance = Appearance::automatic;
    Contrast contrast = Contrast::automatic;
    Output output = Output::normal;
    bool headless = false;
    bool paste = false; ///< the clipboard is attached, too
    bool help = false;
    bool version = false;
    bool json = false; ///< what became of each file is printed as JSON
    std::vector<Step> steps;

    std::optional<std::string> album; ///< the path of the album to add to, without a window and without steps
    std::optional<std::string> passcodeFile;
    std::optional<std::string> albumPasswordFile;

    /// Reads the program's arguments. The error says in one line what is wrong with them.
    static Result<CommandLine> parse(const std::vector<std::string>& words);
};

} // namespace sela
