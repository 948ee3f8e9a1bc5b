#include "share/SaveRun.h"

#include <algorithm>

namespace sela {

std::int64_t SaveRun::count(AttachmentOutcome::Kind kind) const {
    return std::ranges::count(outcomes, kind, &AttachmentOutcome::kind);
}

const AttachmentOutcome* SaveRun::firstProblem() const {
    const auto found = std::ranges::find(outcomes, AttachmentOutcome::Kind::failed, &AttachmentOutcome::kind);
    return found == outcomes.end() ? nullptr : &*found;
}

} // namespace sela
