#pragma once

#include <string>

namespace sela {

/// The only setting of a group's programs. Read on first use, from any thread, and kept for the life of the
/// process.
class StoreConst {
public:
    static const StoreConst& shared();

    /// The identifier of the application group whose container and settings are shared with the main
    /// application: $SELA_GROUP_ID as it was on first use, otherwise "group.sela.vault".
    const std::string groupId;

private:
    StoreConst();
};

} // namespace sela
