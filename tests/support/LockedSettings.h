#pragma once

#include "support/DiskWrapper.h"

#include <cerrno>
#include <limits>
#include <string_view>

namespace sela {

/// As if another program kept the settings locked while this lives, or for so many attempts.
class LockedSettings : public DiskWrapper {
public:
    explicit LockedSettings(int attempts = std::numeric_limits<int>::max()) : left_(attempts) {}

private:
    int refusal(const char* call) override {
        return std::string_view(call) == "lockBytes" && left_-- > 0 ? -EAGAIN : 0;
    }

    int left_;
};

} // namespace sela
