#include "platform/foundation/UserDefaults.h"

#include "platform/foundation/BaseDirectories.h"
#include "platform/foundation/FileManager.h"
#include "platform/foundation/NSLog.h"
#include "platform/foundation/SettingsDatabase.h"

namespace sela {

namespace {

constexpr std::string_view textKind = "text";
constexpr std::string_view dataKind = "data";

std::optional<Data> valueOrLog(Result<std::optional<Data>> value) {
    if (value)
        return std::move(value.value());
    NSLog("UserDefaults: a setting cannot be read, error = " + value.error()->localizedDescription());
    return std::nullopt;
}

} // namespace

std::optional<UserDefaults> UserDefaults::withSuiteName(std::string_view suiteName) {
    const std::optional<URL> config = BaseDirectories::config();
    if (!config || !isSinglePathComponent(suiteName)) {
        NSLog("UserDefaults: there is no place for the settings of " + std::string(suiteName));
        return std::nullopt;
    }
    const URL file =
        config->appendingPathComponent("sela").appendingPathComponent(std::string(suiteName) + ".sqlite3");
    Result<std::shared_ptr<SettingsDatabase>> database = SettingsDatabase::open(file.path());
    if (!database) {
        NSLog("UserDefaults: settings cannot be used, error = " + database.error()->localizedDescription());
        return std::nullopt;
    }
    return UserDefaults(std::move(database.value()));
}

std::optional<Data> UserDefaults::data(std::string_view key) const {
    return valueOrLog(readData(key));
}

Result<std::optional<Data>> UserDefaults::readData(std::string_view key) const {
    return database_->read(key, dataKind);
}

std::optional<std::string> UserDefaults::string(std::string_view key) const {
    const std::optional<Data> value = valueOrLog(database_->read(key, textKind));
    if (!value)
        return std::nullopt;
    return std::string(asText(*value));
}

Result<std::vector<std::string>> UserDefaults::keys(std::string_view prefix) const {
    return database_->keys(prefix);
}

ErrorRef UserDefaults::setData(std::string_view key, DataView value) {
    return database_->write(key, dataKind, value);
}

ErrorRef UserDefaults::setString(std::string_view key, std::string_view value) {
    return database_->write(key, textKind, asData(value));
}

ErrorRef UserDefaults::removeObject(std::string_view key) {
    return database_->remove(key);
}

ErrorRef UserDefaults::transaction(const std::function<ErrorRef()>& body) {
    return database_->transaction(body);
}

} // namespace sela
