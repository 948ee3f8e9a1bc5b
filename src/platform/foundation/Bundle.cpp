#include "platform/foundation/Bundle.h"

#include "platform/foundation/FileManager.h"
#include "platform/foundation/NSLog.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace sela {

namespace {

constexpr std::int64_t maximumTableSize = 1 << 20;

std::string environmentValue(const char* variable) {
    const char* const value = std::getenv(variable);
    return value ? value : "";
}

std::string messageLocale() {
    for (const char* const variable : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (std::string locale = environmentValue(variable); !locale.empty())
            return locale;
    return "C";
}

/// The locales that the environment asks for, in the form of $LANGUAGE; empty when it asks for none.
std::string preferredLocales() {
    const std::string locale = messageLocale();
    if (locale == "C" || locale == "POSIX")
        return "";
    if (std::string locales = environmentValue("LANGUAGE"); !locales.empty())
        return locales;
    return locale.starts_with("C.") ? "" : locale;
}

/// The tables that serve a locale, "language[_TERRITORY][.codeset][@modifier]", the most specific first.
std::vector<std::string> localizations(std::string_view locale) {
    const std::string_view modifier = locale.substr(std::min(locale.find('@'), locale.size()));
    const std::string_view place = locale.substr(0, std::min(locale.find_first_of(".@"), locale.size()));
    const std::string_view language = place.substr(0, std::min(place.find('_'), place.size()));
    std::vector<std::string> names;
    for (const std::string_view suffix : {modifier, std::string_view()})
        for (const std::string_view name : {place, language})
            names.push_back(std::string(name) + std::string(suffix));
    return names;
}

/// Names of tables in lookup order, each once.
std::vector<std::string> preferredLocalizations() {
    std::vector<std::string> names;
    std::string locales = preferredLocales() + ":en:";
    for (std::size_t end; (end = locales.find(':')) != std::string::npos; locales.erase(0, end + 1))
        for (std::string& name : localizations(std::string_view(locales).substr(0, end)))
            if (std::ranges::find(names, name) == names.end())
                names.push_back(std::move(name));
    return names;
}

} // namespace

Bundle::Bundle() {
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    resourcePath_ = (program.parent_path().parent_path() / "share").string();
    for (const std::string& name : preferredLocalizations()) {
        std::optional<StringTable> table = readTable(name);
        if (!table)
            continue;
        if (tables_.empty())
            preferredLocalization_ = name;
        tables_.push_back(std::move(*table));
    }
}

std::optional<StringTable> Bundle::readTable(const std::string& language) const {
    const std::string path = resourcePath_ + "/locale/" + language + "/LC_MESSAGES/sela-share.mo";
    FileManager& files = FileManager::defaultManager();
    // A missing table is no error: most languages that are asked for have none.
    if (!isSinglePathComponent(language) || !files.fileExists(path))
        return std::nullopt;
    const Result<Data> content = files.contentsOfFile(path, maximumTableSize);
    Result<StringTable> table = content ? StringTable::parse(content.value(), path) : content.error();
    if (table)
        return std::move(table.value());
    NSLog("Bundle: " + table.error()->localizedDescription());
    return std::nullopt;
}

std::vector<std::string> Bundle::localizedStringsOfAllLanguages(std::string_view key) const {
    std::vector<std::string> texts;
    const Result<std::vector<std::string>> languages =
        FileManager::defaultManager().contentsOfDirectory(resourcePath_ + "/locale");
    if (languages)
        for (const std::string& language : languages.value())
            if (const std::optional<StringTable> table = readTable(language))
                if (const std::optional<std::string_view> text = table->text(key))
                    texts.emplace_back(*text);
    return texts;
}

const Bundle& Bundle::main() {
    static const Bundle bundle;
    return bundle;
}

std::string Bundle::localizedString(std::string_view key) const {
    for (const StringTable& table : tables_)
        if (const auto text = table.text(key))
            return std::string(*text);
    return std::string(key);
}

} // namespace sela
