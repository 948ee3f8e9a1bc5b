#include "host/ReasonSummary.h"

#include "platform/foundation/UTF8.h"

#include <algorithm>

namespace sela {

namespace {

constexpr std::size_t mostLines = 3;
constexpr std::size_t mostNamesOfLine = 3;

/// Characters of the start and the end of a long name that are kept.
constexpr std::size_t keptStart = 14;
constexpr std::size_t keptEnd = 12;

std::string more(std::size_t count) {
    return "… + " + std::to_string(count);
}

/// The name without its middle when it is long; its end says of what kind it is.
std::string shortened(std::string_view name) {
    std::size_t left = characterCount(name);
    if (left <= keptStart + keptEnd + 1)
        return std::string(name);
    std::string text;
    for (std::size_t kept = 0; !name.empty(); --left) {
        const DecodedCharacter character = decodeUTF8(name);
        name.remove_prefix(character.length);
        if (kept++ < keptStart || left <= keptEnd)
            appendUTF8(text, character.codePoint);
        else if (kept == keptStart + 1)
            text += "…";
    }
    return text;
}

} // namespace

void ReasonSummary::add(const std::string& name, const std::string& reason) {
    auto line = std::ranges::find(lines_, reason, &Line::reason);
    if (line == lines_.end())
        line = lines_.insert(line, {.reason = reason, .names = {}});
    ++line->files;
    if (!name.empty() && line->names.size() < mostNamesOfLine)
        line->names.push_back(shortened(name));
}

std::string ReasonSummary::text(const Line& line) {
    std::string text;
    for (const std::string& name : line.names)
        text += (text.empty() ? "" : ", ") + name;
    if (!text.empty() && line.files > line.names.size())
        text += ", " + more(line.files - line.names.size());
    const char* const separator = text.empty() || line.reason.empty() ? "" : ": ";
    return text + separator + line.reason;
}

std::string ReasonSummary::text() const {
    std::string text;
    std::size_t untold = 0;
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        if (i < mostLines)
            text += (i > 0 ? "\n" : "") + ReasonSummary::text(lines_[i]);
        else
            untold += lines_[i].files;
    }
    return untold > 0 ? text + "\n" + more(untold) : text;
}

} // namespace sela
