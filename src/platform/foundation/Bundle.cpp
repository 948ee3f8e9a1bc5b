#include "platform/foundation/Bundle.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <libintl.h>
#include <locale.h>
#include <system_error>

namespace sela {

namespace {

constexpr const char* tableName = "sela-share";

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

/// The languages that the environment asks for, in the form of $LANGUAGE; empty when it asks for none.
std::string preferredLanguages() {
    const std::string locale = messageLocale();
    if (locale == "C" || locale == "POSIX")
        return "";
    if (std::string languages = environmentValue("LANGUAGE"); !languages.empty())
        return languages;
    return locale.starts_with("C.") ? "" : locale;
}

/// A locale in which tables are looked up. The plain "C" locale, which a machine without language settings is
/// in, has none even for English; this one is part of the C library.
locale_t lookupLocale() {
    static const locale_t locale = ::newlocale(LC_ALL_MASK, "C.UTF-8", nullptr);
    return locale;
}

} // namespace

Bundle::Bundle() {
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    resourcePath_ = (program.parent_path().parent_path() / "share").string();
    const std::string languages = preferredLanguages();
    ::setenv("LANGUAGE", languages.empty() ? "en" : (languages + ":en").c_str(), 1);
    ::bindtextdomain(tableName, (resourcePath_ + "/locale").c_str());
    ::bind_textdomain_codeset(tableName, "UTF-8");
}

const Bundle& Bundle::main() {
    static const Bundle bundle;
    return bundle;
}

std::string Bundle::preferredLocalization() const {
    constexpr std::string_view field = "\nLanguage: ";
    // The text of the empty key is the table's header.
    const std::string header = "\n" + localizedString("");
    const std::size_t found = header.find(field);
    if (found == std::string::npos)
        return "";
    const std::size_t start = found + field.size();
    return header.substr(start, header.find('\n', start) - start);
}

std::string Bundle::localizedString(std::string_view key) const {
    const std::string terminated(key);
    const locale_t previous = ::uselocale(lookupLocale());
    const std::string text = ::dgettext(tableName, terminated.c_str());
    ::uselocale(previous);
    return text;
}

} // namespace sela
