#pragma once

#include "platform/foundation/Error.h"
#include "platform/foundation/Secret.h"

#include <optional>
#include <string>
#include <vector>

namespace sela {

/// What the main application puts into the group for the extension to read. One thread.

struct ProvisionedGroup {
    std::string container; ///< its path
    bool isNew = false;    ///< it was not there before
};

/// Makes the group's container and its folders, as far as they are not there already.
Result<ProvisionedGroup> provisionGroup();

/// What to publish. What is absent stays as it is stored.
struct Publication {
    std::optional<std::string> cataloguePath;
    std::optional<Secret> passcode;
    std::optional<Secret> decoyPasscode;
    std::optional<std::string> coversFolder;
    bool checkOnly = false; ///< only tell what publishing would tell
};

/// A line for each cover that an album names and that is not there, and for what the picker will not show.
using PublicationWarnings = std::vector<std::string>;

/// Publishes a catalogue with its covers and passcodes: the covers first, then the rest in one step, so that
/// an extension never sees a catalogue without its covers. Nothing of the settings changes when there is an
/// error: the catalogue cannot be decoded, a passcode or password breaks the rules (`PublicationRules.h`), or
/// something cannot be read or written. With `checkOnly` nothing changes in any case. With a folder of
/// covers, covers that no album names any more are removed at the end.
Result<PublicationWarnings> publish(const Publication& publication);

/// Removes the decoy passcode, so that nothing opens the decoy's albums any more.
ErrorRef clearDecoyPasscode();

} // namespace sela
