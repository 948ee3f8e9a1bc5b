#include "fuzz/FuzzTarget.h"
#include "platform/foundation/FileManager.h"
#include "store/SharedItemLedger.h"
#include "vault/ImportPlace.h"

// Reads arbitrary bytes as a ledger. To an accepted one an entry can be added, which keeps the others; one
// can be removed; and its import targets are below the import's folder.
void fuzz(sela::DataView input) {
    namespace Ledger = sela::SharedItemLedger;
    const sela::SharedItem added{"1.5a.jpg", {"A-b", "C"}, true, "a.jpg"};
    const std::string key = Ledger::key(added);
    auto entries = Ledger::decode(input);
    require(static_cast<bool>(entries) == static_cast<bool>(Ledger::keys(input)));
    if (!entries)
        return;
    const auto rewritten = Ledger::encode(entries.value());
    require(rewritten && Ledger::decode(*rewritten).value() == entries.value());

    const auto grown = Ledger::adding(input, key, added);
    require(grown.has_value());
    const sela::URL into = sela::URL::fileURL("/into");
    for (const auto& [entryKey, item] : entries.value()) {
        std::size_t folders = 1 + item.albumNames.size();
        sela::URL folder = sela::importFolder(into, item.fake, item.albumNames);
        while (folders-- > 0) {
            require(sela::isSinglePathComponent(folder.lastPathComponent()));
            folder = folder.deletingLastPathComponent();
        }
        require(folder.path() == into.path());
        for (const int attempt : {1, 2, 1000}) {
            const std::string name = sela::importName(item, attempt);
            require(sela::isSinglePathComponent(name) && name.size() <= 255);
        }
    }
    entries.value().emplace_back(key, added);
    const auto again = Ledger::decode(*grown);
    require(again && again.value() == entries.value());

    const Ledger::Entry gone = entries.value().front();
    std::erase(entries.value(), gone);
    const auto left = Ledger::removing(*grown, {gone});
    require(left && left.value().has_value() == !entries.value().empty());
    require(!left.value() || Ledger::decode(*left.value()).value() == entries.value());
}
