#include "host/LocalizedReason.h"

#include "platform/foundation/Bundle.h"

#include <libintl.h>

namespace sela {

std::string localizedReason(const Error& error) {
    const std::string reason = error.localizedFailureReason();
    if (std::string text = Bundle::main().localizedString(reason); text != reason)
        return text;
    ::bind_textdomain_codeset("libc", "UTF-8");
    return ::dgettext("libc", reason.c_str());
}

} // namespace sela
