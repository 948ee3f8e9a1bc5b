#include "platform/uikit/NSAttributedString.h"

#include "platform/foundation/FatalError.h"

#include <algorithm>
#include <sstream>
#include <utility>

namespace sela {

namespace {

constexpr std::string_view placeholder = "%@";

void write(std::ostream& out, const NSAttributedString::Attributes& attributes) {
    out << '{';
    if (attributes.font) {
        const std::string& name = attributes.font->name();
        out << "font = " << (name.empty() ? "system" : name) << ' ' << attributes.font->size() << ' '
            << attributes.font->weightName();
    }
    if (attributes.foregroundColor) {
        const RGBA& light = attributes.foregroundColor->resolve(UIUserInterfaceStyle::light);
        out << (attributes.font ? "; color = " : "color = ");
        if (!attributes.foregroundColor->name().empty())
            out << attributes.foregroundColor->name();
        else
            out << light.red << ' ' << light.green << ' ' << light.blue << ' ' << light.alpha;
    }
    out << '}';
}

} // namespace

NSAttributedString::NSAttributedString(std::string_view text, const Attributes& attributes) {
    appendRun(text, attributes);
}

std::string NSAttributedString::string() const {
    std::string text;
    for (const Run& run : runs_)
        text += run.text;
    return text;
}

void NSAttributedString::appendRun(std::string_view text, const Attributes& attributes) {
    if (text.empty())
        return;
    if (!runs_.empty() && runs_.back().attributes == attributes)
        runs_.back().text += text;
    else
        runs_.push_back({std::string(text), attributes});
}

void NSAttributedString::append(const NSAttributedString& text) {
    const std::vector<Run> added = text.runs_;
    for (const Run& run : added)
        appendRun(run.text, run.attributes);
}

void NSAttributedString::replace(std::size_t location, std::size_t length,
                                 const NSAttributedString& replacement) {
    NSAttributedString before;
    NSAttributedString after;
    std::size_t start = 0;
    for (const Run& run : runs_) {
        const std::string_view text = run.text;
        if (location > start)
            before.appendRun(text.substr(0, std::min(text.size(), location - start)), run.attributes);
        const std::size_t kept = location + length > start ? location + length - start : 0;
        after.appendRun(text.substr(std::min(text.size(), kept)), run.attributes);
        start += text.size();
    }
    before.append(replacement);
    before.append(after);
    *this = std::move(before);
}

NSAttributedString NSAttributedString::format(const std::vector<NSAttributedString>& arguments) const {
    NSAttributedString filled = *this;
    std::size_t location = filled.string().find(placeholder);
    for (const NSAttributedString& argument : arguments) {
        if (location == std::string::npos)
            return filled;
        filled.replace(location, placeholder.size(), argument);
        location = filled.string().find(placeholder);
    }
    if (location != std::string::npos)
        fatalError("Not enough arguments provided for " + description());
    return filled;
}

std::string NSAttributedString::description() const {
    std::ostringstream out;
    for (const Run& run : runs_) {
        out << run.text;
        write(out, run.attributes);
    }
    return std::move(out).str();
}

} // namespace sela
