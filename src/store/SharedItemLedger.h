#pragma once

#include "platform/foundation/Data.h"
#include "platform/foundation/Error.h"
#include "store/SharedItem.h"

#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace sela {

/// The ledger: a JSON object that maps ledger keys to records (docs/formats.md). Functions without state; any
/// thread. All but `entries` only work on its text.
namespace SharedItemLedger {

using Entry = std::pair<std::string, SharedItem>;

/// What the group's ledger holds at this moment, in its order; nothing while it is absent. The error when the
/// settings cannot be opened or read, or the value is no ledger.
Result<std::vector<Entry>> entries();

/// The key of an item: each album name with every "-" doubled and one "-" after it, then "fake" or "normal",
/// then the file name.
std::string key(const SharedItem& item);

/// All entries in their order, also those with the same key; the error when the text is no ledger.
Result<std::vector<Entry>> decode(DataView ledger);

using Keys = std::unordered_set<std::string>;

/// The keys of all entries; the error when the text is no ledger. Reads the whole text.
Result<Keys> keys(DataView ledger);

/// A ledger with this one entry; absent when a text of the item is not UTF-8.
std::optional<Data> fresh(std::string_view key, const SharedItem& item);

/// A valid ledger with one more entry; existing entries are kept byte for byte. White space after the closing
/// brace is used up, and a long ledger is padded again once none is left, so that most additions keep the
/// length. Absent when a text of the item is not UTF-8.
std::optional<Data> adding(DataView ledger, std::string_view key, const SharedItem& item);

/// A ledger without these entries; the others are kept byte for byte, and a long ledger mostly keeps its
/// length. Absent when no entry is left; the error when the text is no ledger.
Result<std::optional<Data>> removing(DataView ledger, const std::vector<Entry>& gone);

/// A ledger of these entries; absent when a text is not UTF-8.
std::optional<Data> encode(const std::vector<Entry>& entries);

} // namespace SharedItemLedger

} // namespace sela
