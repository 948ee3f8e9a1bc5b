#pragma once

#include "platform/foundation/Error.h"
#include "platform/foundation/Secret.h"

#include <optional>
#include <string>
#include <vector>

namespace sela {

/// Stores in the group what the extension reads, as the main application does. One thread.

struct ProvisionedGroup {
    std::string container; ///< its path
    bool isNew = false;    ///< it did not exist before
};

/// Makes the group's container and its folders where they are missing.
Result<ProvisionedGroup> provisionGroup();

/// What to publish. Absent values are left as they are stored.
struct Publication {
    std::optional<std::string> cataloguePath;
    std::optional<Secret> passcode;
    std::optional<Secret> decoyPasscode;
    std::optional<std::string> coversFolder;
    bool checkOnly = false; ///< only report what publishing would report
};

/// A line for each missing cover that an album names, and for each album that the picker will not show.
using PublicationWarnings = std::vector<std::string>;

/// Publishes a catalogue with its covers and passcodes: the covers first, then the rest in one transaction,
/// so that an extension never sees a catalogue without its covers. Nothing of the settings changes when there
/// is an error: the catalogue cannot be decoded, a passcode or password breaks the rules
/// (`PublicationRules.h`), or something cannot be read or written. With `checkOnly` nothing changes in any
/// case. With a folder of covers, covers that no album names any more are removed at the end.
Result<PublicationWarnings> publish(const Publication& publication);

/// Removes the decoy passcode, so that nothing opens the decoy's albums any more.
ErrorRef clearDecoyPasscode();

} // namespace sela
