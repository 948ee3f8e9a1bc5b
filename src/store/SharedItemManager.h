#pragma once

#include "platform/foundation/Data.h"
#include "platform/foundation/Error.h"
#include "platform/foundation/URL.h"
#include "store/SaveObserver.h"
#include "store/SharedItem.h"

#include <functional>

namespace sela {

/// Copies shared items into "Items" of the group's container and records them in the ledger. Without state:
/// all of it lives in the shared folder and the settings. May be called from any thread.
///
/// Every file that the ledger records is complete and durable: a file is recorded only after it was flushed.
/// A file whose record could not be stored stays in "Items" unrecorded; a copy that was not completed is
/// removed.
class SharedItemManager {
public:
    /// Takes an optional error. Callers must expect it twice, or never, where that is said.
    using Completion = std::function<void(const ErrorRef&)>;

    /// Takes a fraction from 0.0 to 1.0; more when a file grows meanwhile.
    using Progress = std::function<void(float)>;

    /// Saves the file at `fileUrl` under `item.fileName`. Returns at once. `completion` (which may be empty)
    /// is called
    /// - before the return, with an error: settings that cannot be opened ("UserDefaults is nil"), a kind of
    ///   file that the vault does not keep ("Unsupported file"), no container ("Shared folder is nil");
    /// - before the return, without an error: a file of that name exists in "Items" already;
    /// - on the main queue: the end of the copy and of recording it, or their error;
    /// - on a background thread: a stream that cannot be made ("failed to create stream");
    /// - twice, first with the error and then without: a ledger that cannot be decoded (it is set aside and a
    ///   fresh one holds this item), an item that cannot be encoded into a ledger that has others;
    /// - never: "Items" cannot be made, or the file is empty (an empty copy stays, unrecorded).
    ///
    /// `observer` gets the progress of the copy, and how it ended in each of these cases.
    static void saveItem(const SharedItem& item, const URL& fileUrl, Completion completion,
                         const SaveObserver& observer = {});

    /// Saves `data` under `item.fileName`, entirely on the calling thread: `completion` is called before the
    /// return, in the cases of the other form, or with the write error. `observer` gets the same.
    static void saveItem(const SharedItem& item, DataView data, const Completion& completion,
                         const SaveObserver& observer = {});

    /// Copies a file on the global queue in blocks of 2 MiB (`StreamCopy`), replacing the content of
    /// `destination`, and flushes it. `progress` (which may be empty) is called on the main queue after each
    /// block and with 1.0 at the end; `completion` (which may be empty) after it, without an error once
    /// everything is flushed, otherwise with the error of reading, writing or flushing; "failed to create
    /// stream" is reported on the background thread. Neither is called when the source is empty. `observer`
    /// is called for each block, and at the end when it is not a success.
    static void copyItem(const URL& source, const URL& destination, Progress progress, Completion completion,
                         const SaveObserver& observer = {});
};

} // namespace sela
