#pragma once

#include "platform/foundation/Error.h"

namespace sela {

/// Domain and codes of errors about media (the platform's constants).
inline constexpr std::string_view AVFoundationErrorDomain = "AVFoundationErrorDomain";
inline constexpr int AVErrorUnknown = -11800;
inline constexpr int AVErrorMediaServicesWereReset = -11819;
inline constexpr int AVErrorFileFormatNotRecognized = -11828;
inline constexpr int AVErrorNoImageAtTime = -11832;

} // namespace sela
