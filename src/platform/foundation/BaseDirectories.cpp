#include "platform/foundation/BaseDirectories.h"

#include <cstdlib>
#include <pwd.h>
#include <string_view>
#include <unistd.h>

namespace sela::BaseDirectories {

namespace {

std::optional<URL> absoluteFolder(const char* variable) {
    const char* const value = std::getenv(variable);
    if (!value || value[0] != '/')
        return std::nullopt;
    return URL::fileURL(value);
}

std::optional<URL> home() {
    if (std::optional<URL> folder = absoluteFolder("HOME"))
        return folder;
    const passwd* const user = ::getpwuid(::getuid());
    if (!user || !user->pw_dir || user->pw_dir[0] != '/')
        return std::nullopt;
    return URL::fileURL(user->pw_dir);
}

std::optional<URL> baseFolder(const char* variable, std::string_view belowHome) {
    if (std::optional<URL> folder = absoluteFolder(variable))
        return folder;
    const std::optional<URL> homeFolder = home();
    if (!homeFolder)
        return std::nullopt;
    return homeFolder->appendingPathComponent(belowHome);
}

} // namespace

std::optional<URL> data() {
    return baseFolder("XDG_DATA_HOME", ".local/share");
}

std::optional<URL> config() {
    return baseFolder("XDG_CONFIG_HOME", ".config");
}

} // namespace sela::BaseDirectories
