#include "host/LocalizedReason.h"

#include "host/VaultState.h"
#include "platform/foundation/Bundle.h"

#include <libintl.h>
#include <string_view>
#include <utility>

namespace sela {

namespace {

/// Errors of the store whose texts are for its log.
constexpr std::pair<std::string_view, std::string_view> plainReasons[] = {
    {"Shared folder is nil", noVaultText},
    {"UserDefaults is nil", unreadableVaultText},
};

} // namespace

std::string plainReason(const Error& error) {
    std::string reason = error.localizedFailureReason();
    for (const auto& [text, plain] : plainReasons)
        if (reason == text)
            return std::string(plain);
    return reason;
}

std::string localizedReason(const Error& error) {
    const std::string reason = error.localizedFailureReason();
    if (std::string text = Bundle::main().localizedString(reason); text != reason)
        return text;
    ::bind_textdomain_codeset("libc", "UTF-8");
    return ::dgettext("libc", reason.c_str());
}

} // namespace sela
