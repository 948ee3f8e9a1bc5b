#pragma once

#include "platform/foundation/NSLog.h"

#include <mutex>
#include <string>
#include <vector>

namespace sela {

/// Collects the log lines of one test. Lines may come from any thread.
class LogCapture {
public:
    std::vector<std::string> lines() const {
        const std::lock_guard lock(mutex_);
        return lines_;
    }

private:
    mutable std::mutex mutex_;
    std::vector<std::string> lines_;
    LogRedirection redirection_{[this](const std::string& line) {
        const std::lock_guard lock(mutex_);
        lines_.push_back(line);
    }};
};

} // namespace sela
