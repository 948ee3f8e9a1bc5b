#pragma once

#include "platform/foundation/URL.h"
#include "platform/media/CMTime.h"

#include <cstdint>
#include <memory>

namespace sela {

/// A video file. A value that is cheap to copy: copies share what is known about the file. Thread-safe.
class AVAsset {
public:
    /// The asset of a file, which is not opened yet.
    static AVAsset assetWithURL(const URL& url);

    const URL& url() const;

    /// The duration, in the time scale of the video's track. Zero when the file cannot be read as a video or
    /// has no valid duration. The first call asks the media helper and blocks.
    CMTime duration() const;

    /// A number of this asset that no other asset of this process has, by which the helper recognizes it.
    std::uint32_t identifier() const;

private:
    struct State;
    explicit AVAsset(std::shared_ptr<State> state) : state_(std::move(state)) {}

    std::shared_ptr<State> state_;
};

} // namespace sela
