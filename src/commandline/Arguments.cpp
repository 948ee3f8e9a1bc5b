#include "commandline/Arguments.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace sela {

namespace {

/// Reads words one by one.
class Reader {
public:
    Reader(const OptionTable& table, const std::vector<std::string>& words) : table_(table), words_(words) {}

    Result<Arguments> read() {
        if (ErrorRef error = readCommand())
            return error;
        bool haveOptionsEnded = false;
        while (position_ < words_.size()) {
            const std::string& word = words_[position_++];
            if (haveOptionsEnded || word == "-" || !word.starts_with('-')) {
                arguments_.operands.push_back(word);
            } else if (word == "--") {
                haveOptionsEnded = true;
            } else if (ErrorRef error = word.starts_with("--") ? readOption(word) : readLetters(word)) {
                return error;
            }
        }
        if (ErrorRef error = checkOperands())
            return error;
        return std::move(arguments_);
    }

private:
    /// The command with the most words that the arguments begin with. The program's own options --help and
    /// --version need none.
    ErrorRef readCommand() {
        if (table_.commands.empty() || (!words_.empty() && words_.front().starts_with('-')))
            return nullptr;
        if (words_.empty())
            return usageError("a command is missing");
        const std::string one = words_.front();
        const std::string two = words_.size() > 1 ? one + " " + words_[1] : one;
        for (const Command& command : table_.commands) {
            if (command.name != one && command.name != two)
                continue;
            arguments_.command = &command;
            position_ = command.name == one ? 1 : 2;
            return nullptr;
        }
        std::string possible;
        for (const Command& command : table_.commands)
            if (command.name.starts_with(one + " "))
                possible += (possible.empty() ? "" : ", ") + std::string(command.name.substr(one.size() + 1));
        if (possible.empty())
            return usageError("there is no command \"" + one + "\"");
        // What may be an option with its value, or a passcode, is not repeated.
        const bool isNamed = two != one && !words_[1].starts_with('-') &&
                             words_[1].find_first_not_of("0123456789") != std::string::npos;
        return usageError(isNamed ? "there is no command \"" + two + "\"; " + one + " takes: " + possible
                                  : "\"" + one + "\" needs to know what to do: " + possible);
    }

    /// A command takes the operands that its help names; with --help it takes any.
    ErrorRef checkOperands() const {
        if (!arguments_.command || arguments_.has("--help"))
            return nullptr;
        const std::string_view named = arguments_.command->operands;
        const std::size_t wanted =
            named.empty() ? 0 : 1 + static_cast<std::size_t>(std::ranges::count(named, ' '));
        const std::string name(arguments_.command->name);
        if (arguments_.operands.size() < wanted)
            return usageError(name + " needs " + std::string(named));
        if (arguments_.operands.size() > wanted)
            return usageError(name + " does not take \"" + arguments_.operands[wanted] + "\"");
        return nullptr;
    }

    ErrorRef readOption(const std::string& word) {
        const std::size_t equals = word.starts_with("--") ? word.find('=') : std::string::npos;
        const std::string name = word.substr(0, equals);
        const Option* const option = optionOf(name);
        if (!option)
            return usageError("unknown option " + name);
        std::string value;
        if (option->takesValue()) {
            if (equals != std::string::npos)
                value = word.substr(equals + 1);
            else if (position_ < words_.size())
                value = words_[position_++];
            else
                return usageError(name + " needs a value");
        } else if (equals != std::string::npos) {
            return usageError(name + " takes no value");
        }
        return addValue(*option, std::move(value));
    }

    /// One or more short options in one word, as in "-qv"; for an option with a value, that is the rest of
    /// the word or the next word.
    ErrorRef readLetters(const std::string& word) {
        for (std::size_t place = 1; place < word.size(); ++place) {
            const std::string name{'-', word[place]};
            const Option* const option = optionOf(name);
            if (!option)
                return usageError("unknown option " + name);
            if (!option->takesValue())
                arguments_.options.push_back({option, {}});
            else if (place + 1 < word.size())
                return addValue(*option, word.substr(place + 1));
            else
                return readOption(name);
        }
        return nullptr;
    }

    ErrorRef addValue(const Option& option, std::string value) {
        arguments_.options.push_back({&option, std::move(value)});
        return nullptr;
    }

    const Option* optionOf(std::string_view name) const {
        const auto isMeant = [name](const Option& option) {
            return option.name == name || (option.letter && name == std::string{'-', option.letter});
        };
        const auto findIn = [&](const std::vector<Option>& options) -> const Option* {
            const auto found = std::ranges::find_if(options, isMeant);
            return found == options.end() ? nullptr : &*found;
        };
        if (arguments_.command)
            if (const Option* const option = findIn(arguments_.command->options))
                return option;
        for (const OptionGroup& group : table_.groups)
            if (const Option* const option = findIn(group.options))
                return option;
        return nullptr;
    }

    const OptionTable& table_;
    const std::vector<std::string>& words_;
    std::size_t position_ = 0;
    Arguments arguments_;
};

} // namespace

std::optional<std::string> Arguments::valueOf(std::string_view name) const {
    for (auto given = options.rbegin(); given != options.rend(); ++given)
        if (given->option->name == name)
            return given->value;
    return std::nullopt;
}

Result<Arguments> readArguments(const OptionTable& table, const std::vector<std::string>& words) {
    return Reader(table, words).read();
}

ErrorRef usageError(std::string message) {
    return std::make_shared<NSError>(NSPOSIXErrorDomain, EINVAL, std::move(message));
}

} // namespace sela
