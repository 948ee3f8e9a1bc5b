#pragma once

#include "platform/extension/NSItemProvider.h"

namespace sela {

/// Keeps the attachments of the process from being loaded until it is opened, which it is at its end at the
/// latest: work that waits to be loaded counts as under way, and a main loop would wait for it for ever. Main
/// thread only.
class LoadingGate {
public:
    explicit LoadingGate(bool isOpen) {
        if (!isOpen)
            NSItemProvider::suspendLoading();
    }
    ~LoadingGate() { open(); }
    LoadingGate(const LoadingGate&) = delete;
    LoadingGate& operator=(const LoadingGate&) = delete;

    void open() { NSItemProvider::resumeLoading(); }
};

} // namespace sela
