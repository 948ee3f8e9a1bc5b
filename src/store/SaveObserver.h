#pragma once

#include "platform/foundation/Error.h"

#include <cstdint>
#include <functional>

namespace sela {

/// How saving one item ended.
struct SaveEnd {
    enum class Kind {
        recorded, ///< the file is complete in "Items" and the ledger has its entry
        failed,   ///< it is not in the ledger
        silent,   ///< not in the ledger either, and the completion of the save will never be called
    };

    Kind kind = Kind::recorded;

    /// Why it was not recorded, in the system's words where the system refused; null when it was.
    ErrorRef reason;
};

/// What saving an item reports besides its completion: enough to show its progress and outcome. Either may be
/// empty. Both are called on the thread that saving is on at that moment.
struct SaveObserver {
    /// After each block of a file: the bytes copied so far, and the size that the file had at the start.
    std::function<void(std::int64_t bytes, std::int64_t size)> copied;

    /// Once for each item, before the last call of its completion.
    std::function<void(const SaveEnd& end)> ended;

    /// Asked after each block: true ends the copy with an error and removes the partial file.
    std::function<bool()> shouldStop;

    bool wantsStop() const { return shouldStop && shouldStop(); }
    void tellCopied(std::int64_t bytes, std::int64_t size) const {
        if (copied)
            copied(bytes, size);
    }
    void tellEnd(SaveEnd::Kind kind, const ErrorRef& reason = nullptr) const {
        if (ended)
            ended({kind, reason});
    }
};

} // namespace sela
