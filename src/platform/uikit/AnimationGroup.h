#pragma once

#include <functional>
#include <memory>

namespace sela {

/// One call of `UIView::animate`: the changes made by its block start together, last equally long, and report
/// together. Main thread only.
class AnimationGroup : public std::enable_shared_from_this<AnimationGroup> {
public:
    using Completion = std::function<void(bool finished)>;

    /// Runs `changes` with a new group as the current one, then starts it. `duration` in seconds; with 0 or
    /// less, or where motion is to be reduced, the changes take effect at once. `completion` may be empty.
    static void run(double duration, const std::function<void()>& changes, Completion completion);

    /// Runs `changes` with no current group, so that they are not animated.
    static void runWithoutAnimation(const std::function<void()>& changes);

    /// The group whose block is running; null outside and within `runWithoutAnimation`.
    static AnimationGroup* current();

    /// The fraction of the change that is shown now, eased in and out, 0 to 1.
    double progress() const;

    /// Whether its duration has passed or all its changes were interrupted, and it has reported so: until
    /// then whoever waits for its completion is not ready, although nothing moves any more.
    bool isOver() const { return over_; }

    /// Adds a property to the group.
    void join() { ++running_; }

    /// A property that takes part was changed again or its view was destroyed: the group reports false. The
    /// group ends with its last property.
    void interrupt();

private:
    AnimationGroup(double duration, Completion completion);
    void start();
    void end();

    double startTime_;
    double duration_;
    Completion completion_;
    int running_ = 0;
    bool interrupted_ = false;
    bool ended_ = false; ///< the report is under way
    bool over_ = false;
};

} // namespace sela
