#pragma once

#include "mediaservice/pictures/AreaScaler.h"
#include "mediaservice/pictures/Orientation.h"
#include "platform/media/PictureBounds.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>

namespace sela {

/// Converts pixels of four bytes, as stored in a file, to red, green, blue, alpha in sRGB with the colours
/// premultiplied, in place. Empty when they are in that form already.
using PixelConversion = std::function<void(std::span<std::uint8_t>)>;

/// Describes the rows of a picture that a reader will deliver. A value.
struct PictureRows {
    PictureSize size;     ///< how many there are, and of how many pixels
    PictureSize fullSize; ///< of the picture, which the reader may deliver scaled down
    Orientation orientation = Orientation::up;
    PixelConversion toSRGB;

    /// The rows of a picture in its full size.
    static PictureRows of(PictureSize size, PixelConversion toSRGB = {}) {
        return {size, size, Orientation::up, std::move(toSRGB)};
    }
};

/// Receives a picture's rows from a reader one after another, so that it need not be in memory as a whole.
/// One thread at a time.
class PictureTarget {
public:
    enum class Wants { whatThereIs, whole };

    explicit PictureTarget(PictureBounds bounds, Wants wants = Wants::whatThereIs)
        : bounds_(bounds), wants_(wants) {}
    virtual ~PictureTarget() = default;
    PictureTarget(const PictureTarget&) = delete;
    PictureTarget& operator=(const PictureTarget&) = delete;

    /// The requested size. Readers may deliver a larger picture, but a smaller one only when the file has no
    /// larger one.
    PictureBounds bounds() const { return bounds_; }

    /// Whether a picture with a missing part is an error.
    bool wantsWhole() const { return wants_ == Wants::whole; }

    /// Begins a picture and discards what came before: a reader may have to start again.
    virtual void begin(PictureRows rows) = 0;

    /// Takes the next row. Rows that never come are transparent.
    virtual void addRow(const std::uint8_t* row) = 0;

private:
    const PictureBounds bounds_;
    const Wants wants_;
};

/// A picture scaled to its bounds, upright, in sRGB.
class ScaledPicture : public PictureTarget {
public:
    using PictureTarget::PictureTarget;

    void begin(PictureRows rows) override {
        scaler_.emplace(rows.size, fitted(rows.fullSize, bounds()));
        rows_ = std::move(rows);
    }
    void addRow(const std::uint8_t* row) override { scaler_->addRow(row); }

    /// The picture; called once, after a reader has begun one.
    PixelBuffer take() {
        PixelBuffer pixels = scaler_->take();
        if (rows_.toSRGB)
            rows_.toSRGB(pixels.bytes);
        return upright(std::move(pixels), rows_.orientation);
    }

private:
    PictureRows rows_;
    std::optional<AreaScaler> scaler_;
};

} // namespace sela
