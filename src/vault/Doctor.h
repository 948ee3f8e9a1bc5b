#pragma once

#include "platform/foundation/Error.h"

#include <string>
#include <vector>

namespace sela {

/// A problem found in the group.
struct Finding {
    enum class State {
        forTheUser, ///< the user must decide what to do
        mendable,   ///< repairing it is safe and loses nothing
        mended,
    };

    std::string text; ///< a line for a person
    State state = State::forTheUser;
};

/// Checks all of the group: whether the user, and nobody else, can use its folders and files; the settings,
/// the catalogue with its passcodes and covers, and the ledger against the files; and repairs what can be
/// repaired if asked to. The error when there is no group. One thread.
Result<std::vector<Finding>> examineGroup(bool mend);

} // namespace sela
