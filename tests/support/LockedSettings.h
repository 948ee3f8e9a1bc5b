#pragma once

#include "support/DiskWrapper.h"

#include <cerrno>
#include <limits>
#include <string_view>

namespace sela {

/// As if another program kept the settings locked while this lives, or for so many attempts.
class LockedSettings : public DiskWrapper {
public:
    explicit LockedSettings(int attempts = std::numeric_limits<int>::max()) : attempts_(attempts) {}

    /// How many attempts have met the lock.
    int met() const { return met_; }

private:
    int refusal(const char* call) override {
        if (std::string_view(call) != "lockBytes" || met_ >= attempts_)
            return 0;
        ++met_;
        return -EAGAIN;
    }

    const int attempts_;
    int met_ = 0;
};

} // namespace sela
