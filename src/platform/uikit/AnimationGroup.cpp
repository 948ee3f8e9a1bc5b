#include "platform/uikit/AnimationGroup.h"

#include "platform/foundation/DispatchQueue.h"
#include "platform/uikit/CAMediaTimingFunction.h"
#include "platform/uikit/UIAccessibility.h"

#include <utility>

namespace sela {

namespace {

AnimationGroup* currentGroup = nullptr;

void runWithin(AnimationGroup* group, const std::function<void()>& changes) {
    AnimationGroup* const former = std::exchange(currentGroup, group);
    changes();
    currentGroup = former;
}

} // namespace

void AnimationGroup::run(double duration, const std::function<void()>& changes, Completion completion) {
    const std::shared_ptr<AnimationGroup> group(new AnimationGroup(duration, std::move(completion)));
    const bool moves = duration > 0 && !UIAccessibility::isReduceMotionEnabled();
    runWithin(moves ? group.get() : nullptr, changes);
    group->start();
}

void AnimationGroup::runWithoutAnimation(const std::function<void()>& changes) {
    runWithin(nullptr, changes);
}

AnimationGroup* AnimationGroup::current() {
    return currentGroup;
}

AnimationGroup::AnimationGroup(double duration, Completion completion)
    : startTime_(DispatchQueue::main().now()), duration_(duration), completion_(std::move(completion)) {}

double AnimationGroup::progress() const {
    const double elapsed = DispatchQueue::main().now() - startTime_;
    return CAMediaTimingFunction::easeInEaseOut().value(elapsed / duration_);
}

void AnimationGroup::interrupt() {
    interrupted_ = true;
    if (--running_ == 0)
        end();
}

void AnimationGroup::start() {
    if (running_ == 0)
        end();
    else
        DispatchQueue::main().asyncAfter(duration_, [self = shared_from_this()] { self->end(); });
}

void AnimationGroup::end() {
    if (std::exchange(ended_, true))
        return;
    if (!completion_) {
        over_ = true;
        return;
    }
    DispatchQueue::main().async([self = shared_from_this(), finished = !interrupted_] {
        self->over_ = true;
        std::exchange(self->completion_, {})(finished);
    });
}

} // namespace sela
