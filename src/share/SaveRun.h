#pragma once

#include "platform/foundation/Error.h"
#include "store/SharedItem.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace sela {

/// The outcome of one attachment of a save run.
struct AttachmentOutcome {
    enum class Kind {
        notTried, ///< not reached (yet), or given up before it reached the store
        recorded, ///< complete in "Items" and recorded in the ledger
        failed,
    };

    Kind kind = Kind::notTried;

    /// The name that the user knows: the file's; empty for a picture without one.
    std::string name;

    /// The record that was made for it; absent until it reached the store.
    std::optional<SharedItem> item;

    /// The ledger key under which it was recorded; empty unless it was.
    std::string ledgerKey;

    /// Why it failed, in the system's words where the system refused; null unless it failed.
    ErrorRef reason;

    std::int64_t size = 0; ///< bytes that were saved of it
};

/// The state of saving a request's attachments at one moment. A value.
struct SaveRun {
    enum class State {
        waiting, ///< Add was not pressed
        saving,  ///< the current attachment is being saved, or will be
        stuck,   ///< the store will never report the end of the current attachment, so the run cannot end
        ended,   ///< all are saved, or the current one failed, or the request was cancelled before it
    };

    State state = State::waiting;

    /// The attachment being saved, or at which the run stopped; -1 while it waits, and the number of
    /// attachments once all were saved.
    std::int64_t currentAttachmentIndex = -1;

    /// One for each attachment, in their order; empty while the run waits.
    std::vector<AttachmentOutcome> outcomes;

    std::int64_t copiedBytes = 0; ///< of the current attachment, so far
    std::int64_t currentSize = 0; ///< of the current attachment, in bytes; 0 until a block of it was copied
    std::int64_t savedBytes = 0;  ///< of the attachments before it

    bool hasBegun() const { return state != State::waiting; }

    /// How many attachments have this outcome.
    std::int64_t count(AttachmentOutcome::Kind kind) const;

    /// The first attachment that failed, or at which the run is stuck; null when there is none.
    const AttachmentOutcome* firstProblem() const;
};

} // namespace sela
