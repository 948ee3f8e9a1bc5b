#pragma once

#include "platform/foundation/Error.h"
#include "platform/foundation/Secret.h"

#include <optional>
#include <string>
#include <vector>

namespace sela {

/// What the main application puts into the group for the extension to read. One thread.

/// Makes the group's container and its folders. No error when they are there already.
ErrorRef provisionGroup();

/// What to publish. Passcodes that are absent leave the stored ones as they are.
struct Publication {
    std::string cataloguePath;
    std::optional<Secret> passcode;
    std::optional<Secret> decoyPasscode;
    std::optional<std::string> coversFolder;
};

/// A line for each cover that an album names and that is not there, and for what the picker will not show.
using PublicationWarnings = std::vector<std::string>;

/// Publishes a catalogue with its covers and passcodes: the covers first, then the rest in one step, so that
/// an extension never sees a catalogue without its covers. Nothing of the settings changes when there is an
/// error: the catalogue cannot be decoded, a passcode or password breaks the rules (`PublicationRules.h`), or
/// something cannot be read or written. With a folder of covers, covers that no album names any more are
/// removed at the end.
Result<PublicationWarnings> publish(const Publication& publication);

} // namespace sela
