#include "commandline/OptionTable.h"

#include <algorithm>

namespace sela {

namespace {

constexpr std::size_t width = 80;

/// Appends text wrapped between words, each line after the first indented to a column.
void addWrapped(std::string& page, std::string_view text, std::size_t indent) {
    std::size_t column = page.size() - (page.rfind('\n') + 1);
    bool isFirst = true;
    while (!text.empty()) {
        const std::string_view word = text.substr(0, text.find(' '));
        text.remove_prefix(std::min(word.size() + 1, text.size()));
        if (!isFirst && column + 1 + word.size() > width) {
            page += "\n" + std::string(indent, ' ');
            column = indent;
        } else if (!isFirst) {
            page += ' ';
            ++column;
        }
        page += word;
        column += word.size();
        isFirst = false;
    }
    page += '\n';
}

struct Row {
    std::string name;
    std::string_view help;
};

/// Two columns; a name that is too long for its column has the line to itself.
void addRows(std::string& page, const std::vector<Row>& rows, std::size_t indent) {
    constexpr std::size_t widest = 26;
    std::size_t column = 0;
    for (const Row& row : rows)
        if (row.name.size() <= widest)
            column = std::max(column, indent + row.name.size() + 2);
    for (const auto& [name, help] : rows) {
        page += std::string(indent, ' ') + name;
        if (indent + name.size() + 2 > column)
            page += '\n' + std::string(column, ' ');
        else
            page += std::string(column - indent - name.size(), ' ');
        addWrapped(page, help, column);
    }
}

Row rowOf(const Option& option) {
    std::string name = option.letter ? std::string{'-', option.letter, ',', ' '} : std::string();
    name += option.name;
    if (option.takesValue())
        name += " " + std::string(option.value);
    return {std::move(name), option.help};
}

std::vector<Row> rowsOf(const std::vector<Option>& options) {
    std::vector<Row> rows;
    std::ranges::transform(options, std::back_inserter(rows), rowOf);
    return rows;
}

std::string nameOf(const Command& command) {
    return std::string(command.name) + (command.operands.empty() ? "" : " ") + std::string(command.operands);
}

} // namespace

std::string helpText(const OptionTable& table) {
    std::string page = "Usage: " + std::string(table.program) + " " + std::string(table.usage) + "\n\n";
    addWrapped(page, table.introduction, 0);
    if (!table.examples.empty())
        page += "\n" + table.examples;
    if (!table.commands.empty()) {
        page += "\nCommands:\n";
        std::vector<Row> rows;
        for (const Command& command : table.commands)
            rows.push_back({nameOf(command), command.help});
        addRows(page, rows, 2);
    }
    for (const OptionGroup& group : table.groups) {
        page += "\n" + std::string(group.title) + ":\n";
        addRows(page, rowsOf(group.options), 2);
        if (!group.note.empty()) {
            page += "  ";
            addWrapped(page, group.note, 2);
        }
    }
    page += "\nExit status:\n";
    std::vector<Row> statuses;
    for (const auto& [status, help] : table.statuses)
        statuses.push_back({std::to_string(status), help});
    addRows(page, statuses, 2);
    return page;
}

std::string helpText(const OptionTable& table, const Command& command) {
    std::string page = "Usage: " + std::string(table.program) + " " + nameOf(command) +
                       (command.options.empty() ? "" : " [OPTION]...") + "\n\n";
    const std::string help(command.help);
    addWrapped(page, char(help.front() - 'a' + 'A') + help.substr(1) + ".", 0);
    if (!command.options.empty()) {
        page += "\n";
        addRows(page, rowsOf(command.options), 2);
    }
    return page;
}

} // namespace sela
