#include "host/CommandLine.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <utility>

namespace sela {

namespace {

/// A number that the whole text consists of and that lies within the bounds.
std::optional<double> numberIn(std::string_view text, double smallest, double largest) {
    double number = 0;
    const std::from_chars_result result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size())
        return std::nullopt;
    if (!(number >= smallest && number <= largest))
        return std::nullopt;
    return number;
}

/// Reads arguments one by one; `problem` is empty as long as nothing is wrong.
class Parser {
public:
    explicit Parser(const std::vector<std::string>& arguments) : arguments_(arguments) {}

    std::variant<CommandLine, std::string> parse() {
        bool optionsEnded = false;
        while (problem_.empty() && position_ < arguments_.size()) {
            const std::string& argument = arguments_[position_++];
            if (optionsEnded || argument == "-" || !argument.starts_with('-'))
                line_.attachments.push_back(argument);
            else if (argument == "--")
                optionsEnded = true;
            else
                readOption(argument);
            if (problem_.empty() && attachedValue_)
                problem_ = argument.substr(0, argument.find('=')) + " takes no value";
        }
        if (problem_.empty() && line_.paste && line_.headless)
            problem_ = "--paste needs a display, where the clipboard is";
        if (!problem_.empty())
            return problem_;
        return std::move(line_);
    }

private:
    /// `--option value` or `--option=value`.
    void readOption(const std::string& argument) {
        const std::size_t equals = argument.starts_with("--") ? argument.find('=') : std::string::npos;
        const std::string option = argument.substr(0, equals);
        if (equals != std::string::npos)
            attachedValue_ = argument.substr(equals + 1);
        if (option == "--headless")
            line_.headless = true;
        else if (option == "--quiet" || option == "-q")
            line_.output = CommandLine::Output::quiet;
        else if (option == "--verbose" || option == "-v")
            line_.output = CommandLine::Output::verbose;
        else if (option == "--paste")
            line_.paste = true;
        else if (option == "--help" || option == "-h")
            line_.help = true;
        else if (option == "--version")
            line_.version = true;
        else if (option == "--screen")
            readScreen(value(option));
        else if (option == "--scale")
            readScale(value(option));
        else if (option == "--appearance")
            readAppearance(value(option));
        else if (option == "--contrast")
            readContrast(value(option));
        else
            readStep(option);
    }

    std::string value(const std::string& option) {
        if (attachedValue_)
            return *std::exchange(attachedValue_, std::nullopt);
        if (position_ < arguments_.size())
            return arguments_[position_++];
        problem_ = option + " needs a value";
        return {};
    }

    void readScreen(const std::string& text) {
        const std::string_view whole = text;
        const std::size_t cross = std::min(whole.find('x'), whole.size());
        line_.screenWidth = numberIn(whole.substr(0, cross), 1, 8192);
        line_.screenHeight = cross < whole.size() ? numberIn(whole.substr(cross + 1), 1, 8192) : std::nullopt;
        if (problem_.empty() && !(line_.screenWidth && line_.screenHeight))
            problem_ = "--screen needs a size in points like 375x667, not \"" + text + "\"";
    }

    void readScale(const std::string& text) {
        const std::optional<double> scale = numberIn(text, 0.25, 8);
        if (scale) {
            line_.scale = *scale;
            line_.hasScale = true;
        } else if (problem_.empty()) {
            problem_ = "--scale needs a number from 0.25 to 8, not \"" + text + "\"";
        }
    }

    void readAppearance(const std::string& text) {
        if (text == "light")
            line_.appearance = CommandLine::Appearance::light;
        else if (text == "dark")
            line_.appearance = CommandLine::Appearance::dark;
        else if (problem_.empty())
            problem_ = "--appearance is light or dark, not \"" + text + "\"";
    }

    void readContrast(const std::string& text) {
        if (text == "normal")
            line_.contrast = CommandLine::Contrast::normal;
        else if (text == "high")
            line_.contrast = CommandLine::Contrast::high;
        else if (problem_.empty())
            problem_ = "--contrast is normal or high, not \"" + text + "\"";
    }

    void readStep(const std::string& option) {
        struct Named {
            std::string_view option;
            Step::Kind kind;
        };
        constexpr Named names[] = {{"--tap", Step::Kind::tap},           {"--tap-now", Step::Kind::tapNow},
                                   {"--type", Step::Kind::type},         {"--wait", Step::Kind::wait},
                                   {"--snapshot", Step::Kind::snapshot}, {"--tree", Step::Kind::tree}};
        for (const Named& named : names) {
            if (named.option != option)
                continue;
            Step step{named.kind, value(option)};
            check(step);
            line_.steps.push_back(std::move(step));
            return;
        }
        problem_ = "unknown option " + option;
    }

    void check(Step& step) {
        if (!problem_.empty())
            return;
        if (step.kind == Step::Kind::type &&
            step.argument.find_first_not_of("0123456789") != std::string::npos) {
            problem_ = "--type takes digits only";
        } else if (step.kind == Step::Kind::wait) {
            const std::optional<double> seconds = numberIn(step.argument, 0, 86400);
            if (seconds)
                step.seconds = *seconds;
            else
                problem_ = "--wait needs seconds, not \"" + step.argument + "\"";
        }
    }

    const std::vector<std::string>& arguments_;
    std::size_t position_ = 0;
    std::optional<std::string> attachedValue_; ///< of the option at hand, behind its "="; maybe a passcode
    CommandLine line_;
    std::string problem_;
};

} // namespace

std::variant<CommandLine, std::string> CommandLine::parse(const std::vector<std::string>& arguments) {
    return Parser(arguments).parse();
}

std::string CommandLine::usage() {
    return R"(Usage: sela-share [OPTION]... [FILE | file://URL | -]...

Adds photos, videos and audio to your vault. A card opens: choose an album, press Add, and
every file is copied into the vault's container, for the vault to take in when it next
starts. The files that you name stay where they are.

  sela-share photo.jpg video.mp4                     choose an album on the card
  sela-share --headless --tap addButton photo.jpg    the default album, without a window
  convert plot.png jpg:- | sela-share -              a picture from standard input

What to add:
  FILE, file://URL     a file each; all of them go into one album
  -                    a picture from standard input
  --paste              the files or the picture on the clipboard

How it is shown:
  --headless           without a window; no display is needed, and the steps below say what
                       to press
  --appearance MODE    light or dark, in place of the desktop's own
  --screen WxH         size of the screen in points (375x667 without a display)
  --scale N            pixels per point, from 0.25 to 8
  --contrast MODE      normal or high, in place of the desktop's own

What is told on standard error:
  -q, --quiet          only what went wrong
  -v, --verbose        on a terminal, too, every line that goes to the system's log
  Without these two a terminal shows how far saving has come (--headless), and a file or a
  pipe gets the lines of the log.

Steps, taken in this order, each once the screen is at rest:
  --tap NAME           press addButton, albumButton, cancelButton, backButton, button0 to
                       button9, row:SECTION:ROW or showChildButton:SECTION
  --tap-now NAME       the same without waiting for rest
  --type DIGITS        press one digit of the keypad after another
  --wait SECONDS       let time pass; the next step does not wait for rest
  --snapshot FILE.png  write a picture of the screen
  --tree FILE.json     write what is on the screen, as a tree

  -h, --help           this text
  --version            the version

Exit status:
  0    completed: Add was pressed; a file that could not be added is told on standard error
  3    cancelled: by Cancel, by closing the window, or because no step pressed Add
  4    stuck: saving stopped half-way at a file and can never end
  64   nothing was tried: wrong options, unusable files, or no display
  65   a step failed, and the request was cancelled unless it had ended before
)";
}

} // namespace sela
