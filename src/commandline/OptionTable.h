#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace sela {

/// What a program's arguments may be. One table of them is what the program reads its arguments by
/// (`readArguments`) and what its help, its manual page and its completions are written from. All texts are
/// English, begin in lower case, and live as long as the program. Tables are constants: any thread.

/// What a shell completes a value or an operand with: albums are those that the passcode in --passcode-file
/// opens, and none without it.
enum class Completion { nothing, files, folders, albums };

/// An option, written `--name VALUE`, `--name=VALUE` or `-l VALUE`.
struct Option {
    std::string_view name;       ///< with its dashes
    std::string_view value = {}; ///< what help calls its value; empty for an option that takes none
    std::string_view help = {};  ///< what it does, in a few words without a full stop
    char letter = 0;             ///< its short form, or 0
    Completion completion = Completion::nothing;
    std::vector<std::string_view> words = {}; ///< all of its possible values, or common ones
    std::string_view detail = {};             ///< sentences that only the manual page adds

    bool takesValue() const { return !value.empty(); }
};

/// Options that belong together.
struct OptionGroup {
    std::string_view title;
    std::vector<Option> options;
    std::string_view note = {}; ///< sentences after the options
};

/// What a program does when its first words are `name`.
struct Command {
    std::string_view name;          ///< one word, or two like "album add"
    std::string_view operands = {}; ///< as help prints them, one word for each operand that must be given
    std::string_view help = {};
    std::vector<Option> options = {};
    Completion completion = Completion::nothing; ///< of its operands
    std::string_view detail = {};
};

struct ExitStatusText {
    int status;
    std::string_view help;
};

/// All of a program's arguments: commands with options of their own, or options alone.
struct OptionTable {
    std::string_view program;
    std::string_view usage;        ///< the arguments, as the usage line shows them
    std::string_view introduction; ///< what the program is for
    std::string examples;          ///< lines of a terminal
    std::vector<Command> commands;
    std::vector<OptionGroup> groups;
    std::vector<ExitStatusText> statuses;
    Completion completion = Completion::nothing; ///< of the operands of a program without commands
};

/// From nothing to an import, as lines of a terminal, for the examples of both programs.
inline constexpr std::string_view firstVault = R"(  sela-vault init
  sela-vault passcode set
  sela-vault album add Trips
  sela-vault album add Trips/Rome --cover colosseum.jpg
  sela-share photo.jpg
  sela-vault import --into ~/Pictures/Vault
)";

/// What --help prints of a program: at most 80 columns wide.
std::string helpText(const OptionTable& table);

/// What --help prints of one command of it.
std::string helpText(const OptionTable& table, const Command& command);

} // namespace sela
