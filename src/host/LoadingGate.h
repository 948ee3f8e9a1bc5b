#pragma once

#include "platform/extension/NSItemProvider.h"

namespace sela {

/// Keeps the attachments of the process from being loaded until it is opened. Its destructor opens it: loads
/// that wait count as outstanding work, for which a main loop would wait forever. Main thread only.
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
