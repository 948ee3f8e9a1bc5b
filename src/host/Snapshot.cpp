#include "host/Snapshot.h"

#include <QBuffer>

#include <algorithm>
#include <cmath>

namespace sela::Snapshot {

QColor backdrop(const UITraitCollection& traits) {
    const bool isDark = traits.userInterfaceStyle == UIUserInterfaceStyle::dark;
    return isDark ? QColor(0x4A, 0x4D, 0x58) : QColor(0xDF, 0xE2, 0xEA);
}

QImage picture(UIWindow& window, ViewPainter& painter, double pixelsPerPoint) {
    window.prepareFrame();
    const CGSize size = window.bounds().size;
    const auto pixels = [&](double points) {
        return std::max(1, static_cast<int>(std::lround(points * pixelsPerPoint)));
    };
    QImage image(pixels(size.width), pixels(size.height), QImage::Format_ARGB32_Premultiplied);
    image.fill(backdrop(window.traitCollection()));
    painter.paint(image, image.rect(), window, {pixelsPerPoint, window.traitCollection()});
    return image;
}

std::string png(UIWindow& window, ViewPainter& painter, double pixelsPerPoint) {
    QBuffer file;
    file.open(QIODevice::WriteOnly);
    picture(window, painter, pixelsPerPoint).convertToFormat(QImage::Format_RGB32).save(&file, "PNG");
    return file.data().toStdString();
}

} // namespace sela::Snapshot
