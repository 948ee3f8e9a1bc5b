#pragma once

#include "platform/foundation/Error.h"
#include "platform/foundation/FileDescriptor.h"
#include "platform/foundation/URL.h"

#include <utility>

namespace sela {

/// Excludes a second import of the same group while it lives. One thread.
class ImportLock {
public:
    /// Locks the container's folder itself, so that no lock file is left; the error when another import holds
    /// it.
    static Result<ImportLock> take(const URL& container);

private:
    explicit ImportLock(FileDescriptor folder) : folder_(std::move(folder)) {}

    FileDescriptor folder_;
};

/// Whether an error passes by itself: another import holds the lock, or another program locks the settings.
bool isPassing(const ErrorRef& error);

} // namespace sela
