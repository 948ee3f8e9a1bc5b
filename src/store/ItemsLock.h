#pragma once

#include "platform/foundation/FileDescriptor.h"
#include "platform/foundation/URL.h"

#include <optional>

namespace sela {

/// A lock on "Items", for as long as it lives: savers hold it, shared, from before a file is made until it is
/// recorded; code that removes unrecorded files holds it exclusively. Move-only; any thread.
class ItemsLock {
public:
    /// Shared with other savers. Waits while files are being removed, which is short. On a file system
    /// without locks nothing is locked, and unrecorded files are recognized by their age alone.
    static ItemsLock forSaving(const URL& items);

    /// Absent while a save is running.
    static std::optional<ItemsLock> forRemoving(const URL& items);

private:
    explicit ItemsLock(FileDescriptor folder) : folder_(std::move(folder)) {}

    FileDescriptor folder_;
};

} // namespace sela
