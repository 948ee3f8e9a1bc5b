#include "host/ImageCache.h"

#include "platform/foundation/AssetCatalogue.h"

#include <QPainter>
#include <QSvgRenderer>

#include <algorithm>
#include <cmath>

namespace sela {

namespace {

QImage renderAsset(const std::string& name, QSize size) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    if (const std::optional<AssetCatalogue::NamedImage> asset = AssetCatalogue::image(name)) {
        QSvgRenderer renderer(QByteArray(asset->svg.data(), static_cast<qsizetype>(asset->svg.size())));
        QPainter painter(&image);
        renderer.render(&painter, QRectF(QPointF(), size));
    }
    return image;
}

QImage scalePixels(const PixelBuffer& pixels, const QRectF& part, QSize size) {
    const QImage whole(pixels.bytes.data(), pixels.width, pixels.height, qsizetype{4} * pixels.width,
                       QImage::Format_RGBA8888_Premultiplied);
    const QRect area = QRectF(part.x() * pixels.width, part.y() * pixels.height, part.width() * pixels.width,
                              part.height() * pixels.height)
                           .toAlignedRect()
                           .intersected(whole.rect());
    return whole.copy(area)
        .convertToFormat(QImage::Format_ARGB32_Premultiplied)
        .scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

} // namespace

QImage ImageCache::scaled(const UIImage& image, const QRectF& part, QSize size,
                          const std::optional<QColor>& tint) {
    if (size.isEmpty())
        return {};
    const quint64 tintKey = tint ? quint64{1} << 32 | tint->rgba() : 0;
    const Key key(image.assetName(), image.pixels(), part.x(), part.y(), part.width(), part.height(),
                  size.width(), size.height(), tintKey);
    if (const auto found = byKey_.find(key); found != byKey_.end()) {
        entries_.splice(entries_.begin(), entries_, found->second);
        return entries_.front().image;
    }
    QImage result =
        image.pixels() ? scalePixels(*image.pixels(), part, size) : renderAsset(image.assetName(), size);
    if (tint) {
        QPainter painter(&result);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(result.rect(), *tint);
    }
    entries_.push_front({key, image, result});
    byKey_[key] = entries_.begin();
    size_ += result.sizeInBytes();
    makeRoom();
    return result;
}

/// Drops the least recently used; the latest stays whatever its size.
void ImageCache::makeRoom() {
    while (size_ > capacity && entries_.size() > 1) {
        size_ -= entries_.back().image.sizeInBytes();
        byKey_.erase(entries_.back().key);
        entries_.pop_back();
    }
}

} // namespace sela
