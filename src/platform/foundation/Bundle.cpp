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

/// The languages that the environment asks for, in the form of $LANGUAGE; empty when it asks for none.
std::string preferredLanguages() {
    for (const char* const variable : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* const value = std::getenv(variable);
        if (!value || !*value)
            continue;
        const std::string_view languages = value;
        const bool none = languages == "C" || languages == "POSIX" || languages.starts_with("C.");
        return none ? "" : std::string(languages);
    }
    return "";
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

std::string Bundle::localizedString(std::string_view key) const {
    const std::string terminated(key);
    const locale_t previous = ::uselocale(lookupLocale());
    const std::string text = ::dgettext(tableName, terminated.c_str());
    ::uselocale(previous);
    return text;
}

} // namespace sela
