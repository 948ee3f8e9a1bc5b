#pragma once

#include "platform/foundation/Error.h"
#include "platform/foundation/FileDescriptor.h"
#include "platform/foundation/URL.h"
#include "vault/EndingSignals.h"

#include <utility>

namespace sela {

/// Watches the folder of the settings by inotify: the file itself may not exist yet, and may be replaced. One
/// thread.
class SettingsFolder {
public:
    enum class Changes { none, some, end };

    explicit SettingsFolder(URL folder) : folder_(std::move(folder)) {}

    /// Watches the folder that is there now; the error when there is none, or it cannot be watched.
    ErrorRef watch();

    /// What has happened since the last call: nothing, changes to files, or that the folder was moved or
    /// removed, after which nothing more is noticed.
    Changes changes();

    /// After the end: waits, looking each second, until there is such a folder again in which nothing changes
    /// for a second, and watches that one. Makes none. False after a signal.
    bool awaitNext(EndingSignals& signals);

    /// Readable while there are changes.
    int descriptor() const { return events_.get(); }

private:
    const URL folder_;
    FileDescriptor events_;
};

} // namespace sela
