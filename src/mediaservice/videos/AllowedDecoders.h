#pragma once

#include <array>

namespace sela {

/// The decoders that a video may have: what phones and cameras write now, and what QuickTime files held
/// before. Each has read thousands of damaged files without crashing its helper
/// (tests/mediaservice/MutatedFiles_test.cpp).
inline constexpr std::array allowedDecoders{
    "h264", "hevc",     "mpeg4", "mpeg1video", "mpeg2video", "h263",     "vp8",
    "vp9",  "libdav1d", "mjpeg", "prores",     "dvvideo",    "dnxhd",    "svq1",
    "8bps", "qtrle",    "rpza",  "smc",        "cinepak",    "rawvideo", "png",
};

} // namespace sela
