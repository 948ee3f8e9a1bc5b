#include "vault/Listing.h"

#include "platform/foundation/FileManager.h"
#include "platform/foundation/NSLog.h"
#include "store/DefaultAlbum.h"
#include "store/ShareExtensionError.h"
#include "store/SharedAlbum.h"
#include "store/SharedFolder.h"
#include "store/SharedItemLedger.h"
#include "vault/KeptLedgers.h"

#include <algorithm>
#include <fmt/core.h>
#include <optional>
#include <string_view>
#include <vector>

namespace sela {

namespace {

using Row = std::vector<std::string>;

/// The display width that fmt pads a text by.
std::size_t columnsOf(const std::string& text) {
    return 2 * text.size() - fmt::formatted_size("{:<{}}", text, text.size());
}

/// Rows as columns, two blanks between them.
std::string table(const std::vector<Row>& rows) {
    std::vector<std::size_t> widths(rows.front().size());
    for (const Row& row : rows)
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], columnsOf(row[i]));
    std::string text;
    for (const Row& row : rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i)
            line += i + 1 < row.size() ? fmt::format("{:<{}}  ", row[i], widths[i]) : row[i];
        text += line + "\n";
    }
    return text;
}

std::string pathText(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : "/") + escapedForLog(name);
    return text;
}

std::string sizeOf(const SharedItem& item) {
    const std::optional<URL> container = sharedFolderUrl();
    if (!container || !isSinglePathComponent(item.fileName))
        return "missing";
    const URL file = container->appendingPathComponent(itemsFolderName).appendingPathComponent(item.fileName);
    const Result<FileAttributes> attributes = FileManager::defaultManager().attributesOfItem(file.path());
    return attributes ? std::to_string(attributes.value().size) : "missing";
}

} // namespace

std::string albumsTable(const Catalogue& catalogue) {
    std::vector<Row> rows = {{"VAULT", "ALBUM", "LOCK", "WAITING", "COVER"}};
    const auto add = [&](const SharedAlbum& album) {
        const std::size_t waiting = catalogue.waiting({album.namePath, album.fake});
        const std::string name = album.namePath.empty() ? "" : escapedForLog(album.namePath.back());
        rows.push_back({album.fake ? "decoy" : "vault", (album.namePath.size() > 1 ? "  " : "") + name,
                        album.password ? "locked" : "-", waiting > 0 ? std::to_string(waiting) : "-",
                        escapedForLog(album.thumbNailName.value_or("-"))});
    };
    for (const bool fake : {false, true})
        for (const SharedAlbum& parent : catalogue.albums()) {
            if (parent.fake != fake || parent.namePath.size() != 1)
                continue;
            add(parent);
            for (const SharedAlbum& child : catalogue.albums())
                if (child.fake == fake && child.namePath.size() == 2 &&
                    child.namePath.front() == parent.namePath.front())
                    add(child);
        }
    const std::size_t elsewhere = catalogue.waitingElsewhere();
    if (elsewhere == 0)
        return table(rows);
    return table(rows) + std::to_string(elsewhere) +
           (elsewhere == 1 ? " more file waits" : " more files wait") +
           ", for the default album or for albums that are gone; \"sela-vault ledger\" lists all.\n";
}

Result<std::string> ledgerTable() {
    const Result<std::vector<SharedItemLedger::Entry>> entries = SharedItemLedger::entries();
    if (!entries)
        return entries.error();
    DefaultAlbum defaultAlbum;
    std::vector<Row> rows = {{"VAULT", "BYTES", "ALBUM", "NAME", "FILE"}};
    for (const auto& [key, item] : entries.value())
        rows.push_back({item.fake ? "decoy" : "vault", sizeOf(item),
                        pathText(defaultAlbum.pathOf(item.albumNames)),
                        escapedForLog(item.preferredName.value_or("-")), escapedForLog(item.fileName)});
    std::string text = table(rows);
    const Result<std::vector<std::string>> kept = keptLedgers();
    if (!kept)
        return kept.error();
    for (const std::string& key : kept.value())
        text += "An earlier ledger could not be read and is kept in the settings; " +
                escapedForLog(howToDiscard(key)) + ".\n";
    return text;
}

Result<std::string> ledgerJSON() {
    const Result<std::vector<SharedItemLedger::Entry>> entries = SharedItemLedger::entries();
    if (!entries)
        return entries.error();
    const std::optional<Data> text = SharedItemLedger::encode(entries.value());
    if (!text)
        return ShareExtensionError::make("the ledger cannot be encoded");
    // Characters that control a terminal occur only inside strings, where the log's escapes are valid JSON
    // too.
    return escapedForLog(asText(*text)) + "\n";
}

} // namespace sela
