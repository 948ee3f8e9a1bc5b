#include "platform/foundation/UserDefaults.h"

#include "platform/foundation/BaseDirectories.h"
#include "platform/foundation/FileManager.h"
#include "platform/foundation/NSLog.h"
#include "platform/foundation/SettingsDatabase.h"

#include <cerrno>
#include <utility>

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

/// Absent when there is no folder for it.
std::optional<URL> fileOfSuite(std::string_view suiteName) {
    const std::optional<URL> config = BaseDirectories::config();
    if (!config || !isSinglePathComponent(suiteName))
        return std::nullopt;
    return config->appendingPathComponent("sela").appendingPathComponent(std::string(suiteName) + ".sqlite3");
}

/// One change as a step of its own.
template<class Change>
ErrorRef alone(SettingsDatabase& database, Change change) {
    if (ErrorRef error = database.begin())
        return error;
    return database.end(change());
}

} // namespace

bool isBusy(const ErrorRef& error) {
    return SettingsDatabase::isBusy(error);
}

UserDefaults::UserDefaults(std::unique_ptr<SettingsDatabase> database) : database_(std::move(database)) {}

UserDefaults::UserDefaults(UserDefaults&&) noexcept = default;

UserDefaults& UserDefaults::operator=(UserDefaults&&) noexcept = default;

UserDefaults::~UserDefaults() {
    SettingsDatabase::giveBack(std::move(database_));
}

Result<UserDefaults> UserDefaults::open(std::string_view suiteName, Patience patience) {
    const std::optional<URL> file = fileOfSuite(suiteName);
    if (!file)
        return NSError::posix(ENOENT, "a place for the settings of " + std::string(suiteName));
    Result<std::unique_ptr<SettingsDatabase>> database = SettingsDatabase::open(file->path(), patience);
    if (!database)
        return database.error();
    return UserDefaults(std::move(database.value()));
}

std::optional<UserDefaults> UserDefaults::withSuiteName(std::string_view suiteName, Patience patience) {
    Result<UserDefaults> settings = open(suiteName, patience);
    if (settings)
        return std::move(settings.value());
    NSLog("UserDefaults: settings cannot be used, error = " + settings.error()->localizedDescription());
    return std::nullopt;
}

bool UserDefaults::areBusy(std::string_view suiteName, Patience patience) {
    const Result<UserDefaults> settings = open(suiteName, patience);
    return isBusy(settings ? settings.value().database_->checkReadable() : settings.error());
}

std::optional<Data> UserDefaults::data(std::string_view key) const {
    return valueOrLog(readData(key));
}

Result<std::optional<Data>> UserDefaults::readData(std::string_view key) const {
    return database_->read(key, dataKind);
}

std::optional<Secret> UserDefaults::string(std::string_view key) const {
    std::optional<Data> value = valueOrLog(database_->read(key, textKind));
    if (!value)
        return std::nullopt;
    Secret text(asText(*value));
    overwrite(*value);
    return text;
}

Result<std::vector<std::string>> UserDefaults::keys(std::string_view prefix) const {
    return database_->keys(prefix);
}

ErrorRef UserDefaults::checkIntegrity() const {
    return database_->checkIntegrity();
}

ErrorRef UserDefaults::setData(std::string_view key, DataView value) {
    return alone(*database_, [&] { return database_->write(key, dataKind, value); });
}

ErrorRef UserDefaults::setString(std::string_view key, std::string_view value) {
    return alone(*database_, [&] { return database_->write(key, textKind, asData(value)); });
}

ErrorRef UserDefaults::removeObject(std::string_view key) {
    const Result<bool> any = database_->holdsSettings();
    if (!any || !any.value())
        return any.error();
    return alone(*database_, [&] { return database_->remove(key); });
}

SettingsTransaction::SettingsTransaction(UserDefaults settings) : settings_(std::move(settings)) {}

Result<SettingsTransaction> SettingsTransaction::begin(UserDefaults settings) {
    if (ErrorRef error = settings.database_->begin())
        return error;
    return SettingsTransaction(std::move(settings));
}

SettingsTransaction::~SettingsTransaction() {
    if (settings_.database_)
        settings_.database_->rollBack();
}

Result<std::optional<Data>> SettingsTransaction::readData(std::string_view key) {
    if (failure_)
        return failure_;
    Result<std::optional<Data>> value = settings_.database_->read(key, dataKind);
    failure_ = value.error();
    return value;
}

void SettingsTransaction::setData(std::string_view key, DataView value) {
    if (!failure_)
        failure_ = settings_.database_->write(key, dataKind, value);
}

void SettingsTransaction::setString(std::string_view key, std::string_view value) {
    if (!failure_)
        failure_ = settings_.database_->write(key, textKind, asData(value));
}

void SettingsTransaction::removeObject(std::string_view key) {
    if (!failure_)
        failure_ = settings_.database_->remove(key);
}

ErrorRef SettingsTransaction::commit() {
    return settings_.database_->end(std::exchange(failure_, nullptr));
}

} // namespace sela
