#include "vault/Listing.h"

#include "platform/foundation/FileManager.h"
#include "platform/foundation/NSLog.h"
#include "store/DefaultAlbum.h"
#include "store/ShareExtensionError.h"
#include "store/SharedAlbum.h"
#include "store/SharedFolder.h"
#include "store/SharedItemLedger.h"

#include <algorithm>
#include <fmt/core.h>
#include <optional>
#include <string_view>
#include <vector>

namespace sela {

namespace {

using Row = std::vector<std::string>;

/// The columns that a terminal needs for a text: as many fewer blanks than bytes are what fmt fills it up
/// with.
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

ErrorRef settingsMissing() {
    return ShareExtensionError::make("UserDefaults is nil");
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

Result<std::string> albumsTable() {
    const std::optional<UserDefaults> defaults = sharedDefaults();
    if (!defaults)
        return settingsMissing();
    const Result<std::optional<Data>> catalogue = defaults->readData(sharedAlbumsKey);
    if (!catalogue)
        return catalogue.error();
    if (!catalogue.value())
        return ShareExtensionError::make("no catalogue is published; run \"sela-vault publish\"");
    const Result<std::vector<SharedAlbum>> albums = decodeJSONArray<SharedAlbum>(*catalogue.value());
    if (!albums)
        return albums.error();
    std::vector<Row> rows = {{"VAULT", "LOCK", "ALBUM", "COVER"}};
    for (const SharedAlbum& album : albums.value())
        rows.push_back({album.fake ? "decoy" : "vault", album.password ? "locked" : "-",
                        pathText(album.namePath), escapedForLog(album.thumbNailName.value_or("-"))});
    return table(rows);
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
    if (const std::optional<UserDefaults> defaults = sharedDefaults()) {
        const Result<std::vector<std::string>> keptLedgers = defaults->keys(unreadableItemsKeyPrefix);
        if (!keptLedgers)
            return keptLedgers.error();
        for (const std::string& key : keptLedgers.value())
            text += "An earlier ledger could not be read and is kept in the settings under " +
                    escapedForLog(key) + "\n";
    }
    return text;
}

Result<std::string> ledgerJSON() {
    const Result<std::vector<SharedItemLedger::Entry>> entries = SharedItemLedger::entries();
    if (!entries)
        return entries.error();
    const std::optional<Data> text = SharedItemLedger::encode(entries.value());
    if (!text)
        return ShareExtensionError::make("the ledger cannot be encoded");
    // Characters that drive a terminal stand in texts alone, where the escapes of a log are JSON's too.
    return escapedForLog(asText(*text)) + "\n";
}

} // namespace sela
