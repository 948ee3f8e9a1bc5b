#include "manuals/Completions.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace sela {

namespace {

/// Joins words with a separator.
std::string joined(const std::vector<std::string>& words, std::string_view between = " ") {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : std::string(between)) + word;
    return text;
}

std::string quoted(const std::string& text, std::string_view quoteInside) {
    std::string inside;
    for (const char c : text)
        inside += c == '\'' ? std::string(quoteInside) : std::string(1, c);
    return "'" + inside + "'";
}

std::string firstWord(const Command& command) {
    return std::string(command.name.substr(0, command.name.find(' ')));
}

/// Empty for a command of one word.
std::string secondWord(const Command& command) {
    return std::string(command.name.substr(std::min(firstWord(command).size() + 1, command.name.size())));
}

std::vector<std::string> firstWords(const OptionTable& table) {
    std::vector<std::string> words;
    for (const Command& command : table.commands)
        if (std::ranges::find(words, firstWord(command)) == words.end())
            words.push_back(firstWord(command));
    return words;
}

std::vector<std::string> secondWords(const OptionTable& table, const std::string& first) {
    std::vector<std::string> words;
    for (const Command& command : table.commands)
        if (firstWord(command) == first && !secondWord(command).empty())
            words.push_back(secondWord(command));
    return words;
}

/// The options that stand outside of commands.
std::vector<Option> commonOptions(const OptionTable& table) {
    std::vector<Option> options;
    for (const OptionGroup& group : table.groups)
        std::ranges::copy(group.options, std::back_inserter(options));
    return options;
}

std::vector<std::string> namesOf(const std::vector<Option>& options) {
    std::vector<std::string> names;
    std::ranges::transform(options, std::back_inserter(names),
                           [](const Option& option) { return std::string(option.name); });
    return names;
}

bool completesAlbums(const OptionTable& table) {
    return std::ranges::count(commonOptions(table), Completion::albums, &Option::completion) > 0;
}

std::string functionName(const OptionTable& table) {
    std::string name = "_" + std::string(table.program);
    std::ranges::replace(name, '-', '_');
    return name;
}

/// The albums that the passcode in the file named before opens, a line each; nothing without it. Their names
/// are never expanded. Words that were typed have quotes, "~", and in bash a "=" of their own.
constexpr std::string_view bashAlbums = R"sh(
        local i file= album
        for ((i = 1; i < COMP_CWORD - 1; i++)); do
            [[ ${COMP_WORDS[i]} == --passcode-file ]] || continue
            file=${COMP_WORDS[i + 1]}
            [[ $file != = ]] || file=${COMP_WORDS[i + 2]}
        done
        [[ -n $file ]] || return
        file=${file/#\~\//$HOME/}
        while IFS= read -r album; do
            [[ $album != "${current//[\\\'\"]/}"* ]] || COMPREPLY+=("$album")
        done < <(sela-vault album list --passcode-file "${file//[\\\'\"]/}" 2>/dev/null)
        compopt -o filenames 2>/dev/null
        return)sh";

constexpr std::string_view fishAlbums = R"sh(
function __sela_albums
    set -l file
    set -l words (commandline -opc)
    for place in (seq (count $words))
        switch $words[$place]
            case --passcode-file
                set file $words[(math $place + 1)]
            case '--passcode-file=*'
                set file (string replace -- --passcode-file= '' $words[$place])
        end
    end
    test -n "$file"; or return
    sela-vault album list --passcode-file (string replace -r '^~/' "$HOME/" -- $file) 2>/dev/null |
        string replace -r '$' '\talbum'
end
)sh";

constexpr std::string_view zshAlbums = R"sh(
_sela_albums() {
    local place=${words[(i)--passcode-file(|=*)]}
    local file=${(Q)words[place]#--passcode-file=}
    [[ $file != --passcode-file ]] || file=${(Q)words[place + 1]}
    [[ -n $file ]] || return
    [[ $file != '~/'* ]] || file=$HOME/${file#'~/'}
    local -a albums=(${(f)"$(sela-vault album list --passcode-file $file 2>/dev/null)"})
    compadd -a albums
}
)sh";

/// What bash completes after each option that takes a value.
std::string bashValues(const OptionTable& table) {
    std::vector<Option> options = commonOptions(table);
    for (const Command& command : table.commands)
        std::ranges::copy(command.options, std::back_inserter(options));
    std::vector<std::string> done;
    std::string text;
    for (const Option& option : options) {
        const std::string name(option.name);
        if (!option.takesValue() || std::ranges::find(done, name) != done.end())
            continue;
        done.push_back(name);
        std::vector<std::string> words;
        // Bash splits words at colons, so the words stop before it.
        std::ranges::transform(option.words, std::back_inserter(words), [](std::string_view word) {
            return std::string(word.substr(0, word.find(':')));
        });
        if (option.completion == Completion::albums)
            text += "    " + name + ") " + std::string(bashAlbums) + " ;;\n";
        else if (!words.empty())
            text += "    " + name + ") words=" + quoted(joined(words), "'\\''") + " ;;\n";
        else if (option.completion == Completion::nothing)
            text += "    " + name + ") return ;;\n";
        else
            text += "    " + name + ") ;;\n";
    }
    return text;
}

/// What bash completes elsewhere.
std::string bashWords(const OptionTable& table) {
    const std::string indent = "        ";
    const std::string common = joined(namesOf(commonOptions(table)));
    if (table.commands.empty())
        return indent + "[[ $current != -* ]] || words='" + common + "'\n";
    std::string text = indent + "case \"${COMP_WORDS[*]:1:COMP_CWORD-1} \" in\n" + indent + "' ') words='" +
                       joined(firstWords(table)) + " " + common + "' ;;\n";
    for (const std::string& first : firstWords(table))
        if (const std::vector<std::string> second = secondWords(table, first); !second.empty())
            text += indent + "'" + first + " ') words='" + joined(second) + "' ;;\n";
    for (const Command& command : table.commands)
        text += indent + "'" + std::string(command.name) + " '*) [[ $current != -* ]] || words='" +
                joined(namesOf(command.options)) + (command.options.empty() ? "" : " ") + common + "' ;;\n";
    return text + indent + "esac\n";
}

std::string fishOption(const std::string& start, const Option& option) {
    std::string line = start;
    if (option.letter)
        line += std::string(" -s ") + option.letter;
    line += " -l " + std::string(option.name.substr(2));
    if (option.completion == Completion::albums)
        line += " -x -a '(__sela_albums)'";
    else if (!option.words.empty())
        line += " -x -a " + quoted(joined({option.words.begin(), option.words.end()}), "\\'");
    else if (option.takesValue())
        line += option.completion == Completion::nothing ? " -x" : " -r";
    return line + " -d " + quoted(std::string(option.help), "\\'") + "\n";
}

/// A text escaped for brackets and colons in zsh's notation.
std::string zshText(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        if (c == '[' || c == ']' || c == ':' || c == '\\')
            escaped += '\\';
        escaped += c;
    }
    return escaped;
}

std::string zshFiles(Completion completion) {
    if (completion == Completion::nothing)
        return " ";
    if (completion == Completion::albums)
        return "_sela_albums";
    return completion == Completion::folders ? "_files -/" : "_files";
}

std::string zshArguments(const std::vector<Option>& options, Completion operands, const std::string& indent) {
    std::vector<std::string> parts;
    for (const Option& option : options) {
        std::string what = "[" + zshText(option.help) + "]";
        if (option.takesValue()) {
            std::vector<std::string> words;
            std::ranges::transform(option.words, std::back_inserter(words), zshText);
            what += ":" + zshText(option.value) + ":" +
                    (words.empty() ? zshFiles(option.completion) : "(" + joined(words) + ")");
        }
        // The value follows behind a blank or a "=".
        const std::string name = std::string(option.name) + (option.takesValue() ? "=" : "");
        parts.push_back(quoted("*" + name + what, "'\\''"));
        if (option.letter)
            parts.push_back(quoted("*-" + std::string(1, option.letter) + what, "'\\''"));
    }
    if (operands != Completion::nothing)
        parts.push_back("'*:operand:" + zshFiles(operands) + "'");
    return indent + "_arguments -S \\\n" + indent + "    " + joined(parts, " \\\n" + indent + "    ") + "\n";
}

} // namespace

std::string bashCompletion(const OptionTable& table) {
    const std::string name = functionName(table);
    const std::string program(table.program);
    return "# Completion of " + program + " for bash.\n" + name +
           "() {\n"
           "    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} words=\n"
           "    COMPREPLY=()\n"
           "    if [[ $current == = ]]; then\n"
           "        current=\n"
           "    elif [[ $previous == = ]]; then\n"
           "        previous=${COMP_WORDS[COMP_CWORD - 2]}\n"
           "    fi\n"
           "    case $previous in\n" +
           bashValues(table) + "    *)\n" + bashWords(table) +
           "        ;;\n"
           "    esac\n"
           "    mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$current\")\n"
           "}\n"
           "complete -o bashdefault -o default -F " +
           name + " " + program + "\n";
}

std::string fishCompletion(const OptionTable& table) {
    const std::string program(table.program);
    const std::string start = "complete -c " + program;
    std::string text = "# Completion of " + program + " for fish.\n";
    if (completesAlbums(table))
        text += fishAlbums.substr(1);
    for (const Option& option : commonOptions(table))
        text += fishOption(start, option);
    for (const Command& command : table.commands) {
        const std::string first = firstWord(command);
        const std::string second = secondWord(command);
        std::string seen = "__fish_seen_subcommand_from " + first;
        if (second.empty()) {
            text += start + " -n __fish_use_subcommand -x -a " + first;
        } else {
            text +=
                start + " -n __fish_use_subcommand -x -a " + first + "\n" + start + " -n " +
                quoted(seen + "; and not __fish_seen_subcommand_from " + joined(secondWords(table, first)),
                       "\\'") +
                " -x -a " + second;
            seen += "; and __fish_seen_subcommand_from " + second;
        }
        text += " -d " + quoted(std::string(command.help), "\\'") + "\n";
        for (const Option& option : command.options)
            text += fishOption(start + " -n '" + seen + "'", option);
    }
    return text;
}

std::string zshCompletion(const OptionTable& table) {
    const std::string program(table.program);
    std::string text = "#compdef " + program + "\n# Completion of " + program + " for zsh.\n";
    if (completesAlbums(table))
        text += zshAlbums.substr(1);
    if (table.commands.empty())
        return text + zshArguments(commonOptions(table), table.completion, "");
    text += "if ((CURRENT == 2)); then\n    local -a commands=(" + joined(firstWords(table)) +
            ")\n    _describe command commands\n    return\nfi\n";
    for (const std::string& first : firstWords(table))
        if (const std::vector<std::string> second = secondWords(table, first); !second.empty())
            text += "if ((CURRENT == 3)) && [[ $words[2] == " + first + " ]]; then\n    local -a commands=(" +
                    joined(second) + ")\n    _describe command commands\n    return\nfi\n";
    text += "case \"$words[2] $words[3]\" in\n";
    for (const Command& command : table.commands) {
        const std::string count = secondWord(command).empty() ? "1" : "2";
        std::vector<Option> options = command.options;
        std::ranges::copy(commonOptions(table), std::back_inserter(options));
        text += quoted(std::string(command.name), "'\\''") + (count == "1" ? "\\ *" : "") + ")\n    shift " +
                count + " words\n    ((CURRENT -= " + count + "))\n" +
                zshArguments(options, command.completion, "    ") + "    ;;\n";
    }
    return text + "esac\n";
}

} // namespace sela
