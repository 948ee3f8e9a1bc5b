#include "manuals/ManualPage.h"

#include "store/FileKind.h"

#include <cerrno>

namespace sela {

namespace {

/// Text escaped for roff.
std::string roff(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        if (c == '-')
            escaped += "\\-";
        else if (c == '\\')
            escaped += "\\e";
        else
            escaped += c;
    }
    // A line that begins like this would be a request.
    return text.starts_with('.') || text.starts_with('\'') ? "\\&" + escaped : escaped;
}

std::string sentence(std::string_view help) {
    std::string text(help);
    if (text.front() >= 'a' && text.front() <= 'z')
        text.front() = static_cast<char>(text.front() - 'a' + 'A');
    return text + ".";
}

std::string bold(std::string_view text) {
    return "\\fB" + roff(text) + "\\fR";
}

std::string italic(std::string_view text) {
    return "\\fI" + roff(text) + "\\fR";
}

/// A paragraph with its name to the left, and what it says below.
std::string entry(const std::string& name, std::string_view help, std::string_view detail = {}) {
    return ".TP\n" + name + "\n" + roff(sentence(help)) + "\n" + (detail.empty() ? "" : roff(detail) + "\n");
}

std::string nameOf(const Option& option) {
    std::string name = option.letter ? bold(std::string{'-', option.letter}) + ", " : std::string();
    name += bold(option.name);
    return option.takesValue() ? name + " " + italic(option.value) : name;
}

std::string optionsOf(const std::vector<Option>& options) {
    std::string text;
    for (const Option& option : options)
        text += entry(nameOf(option), option.help, option.detail);
    return text;
}

std::string nameOf(const Command& command) {
    return command.operands.empty() ? bold(command.name)
                                    : bold(command.name) + " " + italic(command.operands);
}

std::string synopsis(const OptionTable& table) {
    std::string text;
    for (const Command& command : table.commands) {
        text += (text.empty() ? "" : ".br\n") + bold(table.program) + " " + nameOf(command);
        for (const Option& option : command.options)
            text += " [" + nameOf(option) + "]";
        text += "\n";
    }
    return text.empty() ? bold(table.program) + " " + italic(table.usage) + "\n" : text;
}

std::string commands(const OptionTable& table) {
    std::string text;
    for (const Command& command : table.commands) {
        text += entry(nameOf(command), command.help, command.detail);
        if (!command.options.empty())
            text += ".RS\n" + optionsOf(command.options) + ".RE\n";
    }
    return text;
}

std::string statuses(const OptionTable& table) {
    std::string text;
    for (const auto& [status, help] : table.statuses)
        text += entry(bold(std::to_string(status)), help);
    return text;
}

std::string kinds() {
    std::string text;
    for (const std::string_view extension : keptExtensions())
        text += (text.empty() ? "" : ",\n") + bold(extension);
    return text + ".\n";
}

Result<std::string> filledIn(const OptionTable& table, std::string_view line) {
    if (line == "@synopsis")
        return synopsis(table);
    if (line == "@commands")
        return commands(table);
    if (line == "@statuses")
        return statuses(table);
    if (line == "@examples")
        return roff(table.examples);
    if (line == "@kinds")
        return kinds();
    for (const OptionGroup& group : table.groups)
        if (line == "@options " + std::string(group.title))
            return optionsOf(group.options) + (group.note.empty() ? "" : ".PP\n" + roff(group.note) + "\n");
    return NSError::posix(EINVAL, line);
}

} // namespace

Result<std::string> manualPage(const OptionTable& table, std::string_view page) {
    std::string text;
    while (!page.empty()) {
        const std::string_view line = page.substr(0, page.find('\n'));
        page.remove_prefix(std::min(line.size() + 1, page.size()));
        if (!line.starts_with('@')) {
            text += std::string(line) + "\n";
            continue;
        }
        Result<std::string> content = filledIn(table, line);
        if (!content)
            return content;
        text += content.value();
    }
    return text;
}

} // namespace sela
