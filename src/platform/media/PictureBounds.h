#pragma once

namespace sela {

/// The largest side of a picture that the media helpers give, in pixels. It bounds the shared memory.
inline constexpr int maximumPictureSide = 4096;

/// How large a picture is wanted, in pixels: as large as both allow, but never larger than it is.
struct PictureBounds {
    int longerSide = 0;  ///< at most
    int shorterSide = 0; ///< at most; 0: as long as the longer side allows

    /// A picture that is shown whole.
    constexpr PictureBounds(int side) : longerSide(side) {}
    constexpr PictureBounds(int longer, int shorter) : longerSide(longer), shorterSide(shorter) {}

    /// A picture that fills a frame, none of whose sides is above `side`, and is cut by it: long ones too
    /// have the pixels for that, as far as `maximumPictureSide` lets them.
    static constexpr PictureBounds filling(int side) { return {maximumPictureSide, side}; }

    bool operator==(const PictureBounds&) const = default;
};

} // namespace sela
