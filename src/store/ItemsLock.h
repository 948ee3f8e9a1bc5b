#pragma once

#include "platform/foundation/FileDescriptor.h"
#include "platform/foundation/URL.h"

#include <optional>

namespace sela {

/// A lock on "Items", for as long as it lives: held by whoever saves, from before a file is made until it is
/// recorded, and by whoever removes files that nobody recorded. Moves; any thread.
class ItemsLock {
public:
    /// Beside others who save. Waits while files are being removed, which takes a moment. Where the file
    /// system has no locks there is none, and what is left behind is told by its age alone.
    static ItemsLock forSaving(const URL& items);

    /// Absent while somebody saves.
    static std::optional<ItemsLock> forRemoving(const URL& items);

private:
    explicit ItemsLock(FileDescriptor folder) : folder_(std::move(folder)) {}

    FileDescriptor folder_;
};

} // namespace sela
