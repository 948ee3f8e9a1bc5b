#include "host/CommandLine.h"

#include "commandline/Arguments.h"
#include "host/ShareOptions.h"
#include "platform/foundation/FatalError.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <utility>

namespace sela {

namespace {

/// The whole text as a number within the bounds.
std::optional<double> numberIn(std::string_view text, double smallest, double largest) {
    double number = 0;
    const std::from_chars_result result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size())
        return std::nullopt;
    if (!(number >= smallest && number <= largest))
        return std::nullopt;
    return number;
}

ErrorRef readScreen(CommandLine& line, const std::string& text) {
    const std::string_view whole = text;
    const std::size_t cross = std::min(whole.find('x'), whole.size());
    line.screenWidth = numberIn(whole.substr(0, cross), 1, 8192);
    line.screenHeight = cross < whole.size() ? numberIn(whole.substr(cross + 1), 1, 8192) : std::nullopt;
    if (line.screenWidth && line.screenHeight)
        return nullptr;
    return usageError("--screen needs a size in points like 375x667, not \"" + text + "\"");
}

ErrorRef readScale(CommandLine& line, const std::string& text) {
    const std::optional<double> scale = numberIn(text, 0.25, 8);
    if (!scale)
        return usageError("--scale needs a number from 0.25 to 8, not \"" + text + "\"");
    line.scale = *scale;
    line.hasScale = true;
    return nullptr;
}

ErrorRef readAppearance(CommandLine& line, const std::string& text) {
    if (text != "light" && text != "dark")
        return usageError("--appearance is light or dark, not \"" + text + "\"");
    line.appearance = text == "light" ? CommandLine::Appearance::light : CommandLine::Appearance::dark;
    return nullptr;
}

ErrorRef readContrast(CommandLine& line, const std::string& text) {
    if (text != "normal" && text != "high")
        return usageError("--contrast is normal or high, not \"" + text + "\"");
    line.contrast = text == "normal" ? CommandLine::Contrast::normal : CommandLine::Contrast::high;
    return nullptr;
}

/// The most pixels of a screen; its picture takes four bytes for each.
constexpr double largestPicture = 256e6;

ErrorRef readType(CommandLine& line, const std::string& text) {
    Step step{Step::Kind::type};
    if (text == "-" || (text.starts_with('@') && text.size() > 1))
        step.argument = text == "-" ? text : text.substr(1);
    else if (text.find_first_not_of("0123456789") == std::string::npos)
        step.digits = Secret(text);
    else
        return usageError("--type takes digits, @FILE or - only");
    line.steps.push_back(std::move(step));
    return nullptr;
}

/// Whether more than one would read standard input.
bool sharesStandardInput(const CommandLine& line) {
    const auto steps = std::ranges::count_if(
        line.steps, [](const Step& step) { return step.kind == Step::Kind::type && step.argument == "-"; });
    return steps + std::ranges::count(line.attachments, "-") + (line.passcodeFile == "-") +
               (line.albumPasswordFile == "-") >
           1;
}

ErrorRef readStep(CommandLine& line, Step::Kind kind, const std::string& text) {
    if (kind == Step::Kind::type)
        return readType(line, text);
    Step step{kind, text};
    if (kind == Step::Kind::wait) {
        const std::optional<double> seconds = numberIn(text, 0, 86400);
        if (!seconds)
            return usageError("--wait needs seconds, not \"" + text + "\"");
        step.seconds = *seconds;
    }
    line.steps.push_back(std::move(step));
    return nullptr;
}

/// What --album means for the other options.
ErrorRef readAlbum(CommandLine& line) {
    if (!line.album)
        return line.passcodeFile || line.albumPasswordFile
                   ? usageError("a passcode is typed for --album only")
                   : nullptr;
    if (!line.steps.empty())
        return usageError("--album presses what is to be pressed by itself, and takes no steps");
    line.headless = true;
    return nullptr;
}

/// What each option of the table does.
ErrorRef readOption(CommandLine& line, std::string_view option, const std::string& value) {
    constexpr std::pair<std::string_view, Step::Kind> steps[] = {
        {"--tap", Step::Kind::tap},   {"--tap-now", Step::Kind::tapNow},    {"--type", Step::Kind::type},
        {"--wait", Step::Kind::wait}, {"--snapshot", Step::Kind::snapshot}, {"--tree", Step::Kind::tree}};
    if (const auto* const step =
            std::ranges::find(steps, option, &std::pair<std::string_view, Step::Kind>::first);
        step != std::end(steps))
        return readStep(line, step->second, value);
    if (option == "--screen")
        return readScreen(line, value);
    if (option == "--scale")
        return readScale(line, value);
    if (option == "--appearance")
        return readAppearance(line, value);
    if (option == "--contrast")
        return readContrast(line, value);
    if (option == "--headless")
        line.headless = true;
    else if (option == "--quiet")
        line.output = CommandLine::Output::quiet;
    else if (option == "--verbose")
        line.output = CommandLine::Output::verbose;
    else if (option == "--paste")
        line.paste = true;
    else if (option == "--json")
        line.json = true;
    else if (option == "--album")
        line.album = value;
    else if (option == "--passcode-file")
        line.passcodeFile = value;
    else if (option == "--album-password-file")
        line.albumPasswordFile = value;
    else if (option == "--help")
        line.help = true;
    else if (option == "--version")
        line.version = true;
    else
        fatalError("no meaning for the option " + std::string(option));
    return nullptr;
}

} // namespace

Result<CommandLine> CommandLine::parse(const std::vector<std::string>& words) {
    const Result<Arguments> arguments = readArguments(shareOptions(), words);
    if (!arguments)
        return arguments.error();
    CommandLine line;
    line.attachments = arguments.value().operands;
    for (const auto& [option, value] : arguments.value().options)
        if (ErrorRef error = readOption(line, option->name, value))
            return error;
    if (line.screenWidth && *line.screenWidth * *line.screenHeight * line.scale * line.scale > largestPicture)
        return usageError("--screen and --scale together ask for a picture of more than 256 megapixels");
    if (ErrorRef error = readAlbum(line))
        return error;
    if (sharesStandardInput(line))
        return usageError("only one thing can come from standard input");
    if (line.paste && line.headless)
        return usageError("--paste needs a display, where the clipboard is");
    return line;
}

} // namespace sela
