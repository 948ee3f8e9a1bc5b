#pragma once

#include "platform/media/UIImage.h"
#include "platform/uikit/UIColor.h"

#include <QColor>
#include <QImage>
#include <QRectF>
#include <QSize>

#include <list>
#include <map>
#include <optional>
#include <string>
#include <tuple>

namespace sela {

/// Pictures at the size in pixels at which they are drawn: scaled once, with high quality, or rendered from
/// an asset's vectors, and kept until the cache is full (LRU). Main thread only.
class ImageCache {
public:
    /// The part `part` (fractions of the picture, 0 to 1) of `image` as `size` pixels. With `tint` the
    /// picture's coverage is filled with that colour. A null image for an empty size.
    QImage scaled(const UIImage& image, const QRectF& part, QSize size, const std::optional<QColor>& tint);

private:
    /// Bytes of pixels that are kept.
    static constexpr qsizetype capacity = qsizetype{24} * 1024 * 1024;

    /// The key of a picture of pixels is their address; the entry keeps them alive.
    using Key =
        std::tuple<std::string, const PixelBuffer*, double, double, double, double, int, int, quint64>;
    struct Entry {
        Key key;
        UIImage source;
        QImage image;
    };

    void makeRoom();

    std::list<Entry> entries_; ///< the latest used first
    std::map<Key, std::list<Entry>::iterator> byKey_;
    qsizetype size_ = 0;
};

} // namespace sela
