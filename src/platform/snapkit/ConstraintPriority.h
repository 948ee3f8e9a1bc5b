#pragma once

namespace sela {

/// How important a constraint is, above 0 and up to 1000; the platform's named steps. The more important one
/// of two that contradict each other is kept, of equally important ones the one that was made first.
namespace ConstraintPriority {

inline constexpr double required = 1000;
inline constexpr double high = 750;
inline constexpr double medium = 500;
inline constexpr double low = 250;

} // namespace ConstraintPriority

} // namespace sela
