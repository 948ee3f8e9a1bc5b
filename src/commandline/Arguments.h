#pragma once

#include "commandline/OptionTable.h"
#include "platform/foundation/Error.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sela {

/// The arguments of a program, parsed by its table. A value; it refers to the table.
struct Arguments {
    struct Given {
        const Option* option;
        std::string value; ///< empty for an option that takes none
    };

    const Command* command = nullptr; ///< of a program that has commands; null when none was named
    std::vector<Given> options;       ///< in the order in which they were written
    std::vector<std::string> operands;

    bool has(std::string_view name) const { return valueOf(name).has_value(); }

    /// The value of the last option of that name.
    std::optional<std::string> valueOf(std::string_view name) const;
};

/// Reads the arguments of a program: the command's words first where the table has commands, then options and
/// operands in any order. "--" ends the options; "-" is an operand. The error says in one line what is wrong;
/// it never repeats the value of an option, which may be a passcode.
Result<Arguments> readArguments(const OptionTable& table, const std::vector<std::string>& words);

/// The error for arguments that cannot be used.
ErrorRef usageError(std::string message);

} // namespace sela
