#include "vault/KeptLedgers.h"

#include "platform/foundation/FileManager.h"
#include "store/ShareExtensionError.h"
#include "store/SharedFolder.h"
#include "vault/VaultPlace.h"

#include <optional>

namespace sela {

Result<std::vector<std::string>> keptLedgers() {
    const Result<UserDefaults> defaults = openSharedDefaults();
    return defaults ? defaults.value().keys(unreadableItemsKeyPrefix) : defaults.error();
}

Result<std::string> keptLedger(const std::string& key) {
    const Result<UserDefaults> defaults = openSharedDefaults();
    if (!defaults)
        return defaults.error();
    const Result<std::optional<Data>> text = defaults.value().readData(key);
    if (!text)
        return text.error();
    if (!key.starts_with(unreadableItemsKeyPrefix) || !text.value())
        return ShareExtensionError::make("no earlier ledger is kept under " + key);
    return std::string(asText(*text.value()));
}

ErrorRef discardKeptLedger(const std::string& key) {
    Result<UserDefaults> defaults = openSharedDefaults();
    return defaults ? defaults.value().removeObject(key) : defaults.error();
}

Result<std::string> reasonToKeepUnrecorded() {
    const Result<std::vector<std::string>> kept = keptLedgers();
    if (!kept)
        return kept.error();
    if (!kept.value().empty())
        return std::string("an earlier ledger that could not be read may record it");
    // Settings that were lost may have had a ledger.
    const std::optional<URL> file = settingsFile();
    const bool isThere = file && FileManager::defaultManager().fileExists(file->path());
    return std::string(isThere ? "" : "the settings, which may record it, are missing");
}

std::string howToDiscard(const std::string& key) {
    return "\"sela-vault ledger --discard " + key + "\" prints and removes it";
}

} // namespace sela
