#pragma once

#include "platform/foundation/Error.h"
#include "platform/foundation/JSONRecords.h"

#include <array>
#include <string>
#include <vector>

namespace sela {

/// What an import notes in the settings before it touches anything, so that it may be stopped at any point.
/// One thread.
namespace ImportJournal {

/// A file on its way.
struct Note {
    std::string key;      ///< of its entry in the ledger
    std::string fileName; ///< in "Items"
    std::string target;   ///< a file URL, since a path need not be text

    static constexpr auto jsonMembers() {
        return std::array<JSONMember<Note>, 3>{
            {{"key", &Note::key}, {"fileName", &Note::fileName}, {"target", &Note::target}}};
    }
};

/// The notes of an import that was stopped; none when it came to its end, or when they cannot be decoded. The
/// error when the settings cannot be read.
Result<std::vector<Note>> read();

/// Notes these in place of what was noted before. On return without an error that is on the disk.
ErrorRef write(const std::vector<Note>& notes);

ErrorRef clear();

} // namespace ImportJournal

} // namespace sela
