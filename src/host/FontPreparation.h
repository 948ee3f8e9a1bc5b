#pragma once

#include <future>
#include <thread>

namespace sela {

/// Loads the list of the system's fonts on a thread in parallel with the rest of the start: reading their
/// configuration and listing them takes a fifth of the time to the first frame. Used by the main thread; what
/// the environment says about fonts must be set before. Without a thread to do so Qt does it when the first
/// text is laid out.
class FontPreparation {
public:
    /// Begins to read the configuration.
    FontPreparation();

    /// Waits for what was begun.
    ~FontPreparation();

    FontPreparation(const FontPreparation&) = delete;
    FontPreparation& operator=(const FontPreparation&) = delete;

    /// Continues with Qt's list of fonts. Called once, when there is a QGuiApplication. The thread stays, as
    /// Qt uses one for filling large areas.
    void beginList();

    /// Returns when texts can be laid out without doing any of this again. After `beginList`.
    void wait();

private:
    std::thread configuration_;
    std::promise<void> list_;
    std::future<void> listed_;
};

} // namespace sela
