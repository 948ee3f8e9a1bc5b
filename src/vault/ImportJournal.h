#pragma once

#include "platform/foundation/Error.h"
#include "platform/foundation/JSONRecords.h"

#include <array>
#include <string>
#include <vector>

namespace sela {

/// The notes that an import stores in the settings before it changes anything, so that it may be killed at
/// any point. One thread.
namespace ImportJournal {

/// A file that is being imported.
struct Note {
    std::string key;      ///< of its entry in the ledger
    std::string fileName; ///< in "Items"
    std::string target;   ///< a file URL, since a path need not be text

    static constexpr auto jsonMembers() {
        return std::array<JSONMember<Note>, 3>{
            {{"key", &Note::key}, {"fileName", &Note::fileName}, {"target", &Note::target}}};
    }
};

/// The notes of an interrupted import; none when the last one was completed, or when they cannot be decoded.
/// The error when the settings cannot be read.
Result<std::vector<Note>> read();

/// Stores these notes in place of the former ones. When it returns without an error, they are flushed.
ErrorRef write(const std::vector<Note>& notes);

ErrorRef clear();

} // namespace ImportJournal

} // namespace sela
