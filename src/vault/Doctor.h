#pragma once

#include "platform/foundation/Error.h"

#include <string>
#include <vector>

namespace sela {

/// Something in the group that is not as it should be.
struct Finding {
    enum class State {
        forTheUser, ///< only a person can tell what to do
        mendable,   ///< mending it is safe and loses nothing
        mended,
    };

    std::string text; ///< a line for a person
    State state = State::forTheUser;
};

/// Looks at all of the group: the modes of its folders and files, the settings, the catalogue with its
/// passcodes and covers, and the ledger against the files; and mends what can be mended when it is asked to.
/// The error when there is no group, or when something cannot be looked at or mended. One thread.
Result<std::vector<Finding>> examineGroup(bool mend);

} // namespace sela
