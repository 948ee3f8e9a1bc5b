#pragma once

#include "platform/uikit/AnimationGroup.h"
#include "platform/uikit/Interpolation.h"

#include <memory>
#include <utility>

namespace sela {

/// The animation of one property of a view from the value that was shown to the one it has. The property's
/// owner keeps it until it ends. Move-only; destroying one that still runs interrupts its group.
template<class T>
class PropertyAnimation {
public:
    PropertyAnimation() = default;

    /// Starts as part of `group`.
    PropertyAnimation(AnimationGroup& group, T from)
        : group_(group.shared_from_this()), from_(std::move(from)) {
        group_->join();
    }
    PropertyAnimation(PropertyAnimation&& other) noexcept = default;
    PropertyAnimation& operator=(PropertyAnimation&& other) noexcept {
        std::swap(group_, other.group_);
        std::swap(from_, other.from_);
        return *this;
    }
    ~PropertyAnimation() { stop(); }

    bool isRunning() const { return group_ && !group_->isOver(); }

    /// Ends it early.
    void stop() {
        if (const std::shared_ptr<AnimationGroup> group = std::move(group_); group && !group->isOver())
            group->interrupt();
    }

    bool isPart(const AnimationGroup& group) const { return group_.get() == &group; }

    /// What is shown now of a property that has the value `model`.
    T shown(const T& model) const {
        return isRunning() ? interpolated(from_, model, group_->progress()) : model;
    }

private:
    std::shared_ptr<AnimationGroup> group_;
    T from_{};
};

} // namespace sela
