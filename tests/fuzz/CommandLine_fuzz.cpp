#include "fuzz/FuzzTarget.h"
#include "host/CommandLine.h"

#include <algorithm>

// Takes the input's lines for the arguments of sela-share.
void fuzz(sela::DataView input) {
    std::vector<std::string> arguments;
    std::string_view text = sela::asText(input);
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        arguments.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    const auto parsed = sela::CommandLine::parse(arguments);
    if (!parsed) {
        require(!parsed.error()->localizedDescription().empty());
        return;
    }
    const sela::CommandLine& line = parsed.value();
    require(line.scale >= 0.25 && line.scale <= 8);
    require(line.screenWidth.value_or(1) >= 1 && line.screenHeight.value_or(1) <= 8192);
    require(line.attachments.size() + line.steps.size() <= arguments.size());
    for (const sela::Step& step : line.steps)
        require(step.seconds >= 0 && step.seconds <= 86400);
}
