#include "host/ShareWindow.h"

#include "host/Compositing.h"
#include "host/Snapshot.h"
#include "platform/foundation/MonotonicClock.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPalette>
#include <QScreen>

#include <algorithm>
#include <cmath>
#include <utility>

namespace sela {

namespace {

/// The screen of the phone that the card was drawn for, in points.
constexpr CGSize defaultScreenSize{375, 667};

/// Points that a list moves by a step of a wheel without finer units.
constexpr double pointsPerWheelStep = 48;

/// What Qt counts for a step of a wheel, in eighths of a degree.
constexpr double wheelStepAngle = 120;

bool isWayland() {
    return QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
}

} // namespace

bool ShareWindow::coversScreen(const CommandLine& line) {
    return !line.screenWidth && desktopComposites();
}

CGSize ShareWindow::screenSize(const CommandLine& line) {
    if (line.screenWidth && line.screenHeight)
        return {*line.screenWidth, *line.screenHeight};
    const QScreen* const screen = QGuiApplication::primaryScreen();
    if (!screen || !coversScreen(line))
        return defaultScreenSize;
    const double unit = line.hasScale ? line.scale / screen->devicePixelRatio() : 1;
    const QSize size = isWayland() ? screen->availableSize() : screen->size();
    return {size.width() / unit, size.height() / unit};
}

UIUserInterfaceStyle ShareWindow::appearance(const CommandLine& line) {
    if (line.appearance == CommandLine::Appearance::automatic) {
        const bool isDark = QGuiApplication::palette().color(QPalette::Window).lightnessF() < 0.5F;
        return isDark ? UIUserInterfaceStyle::dark : UIUserInterfaceStyle::light;
    }
    return line.appearance == CommandLine::Appearance::dark ? UIUserInterfaceStyle::dark
                                                            : UIUserInterfaceStyle::light;
}

ShareWindow::ShareWindow(UIWindow& window, ViewPainter& painter, const CommandLine& line)
    : window_(window), painter_(painter), line_(line), coversScreen_(coversScreen(line)), store_(this) {
    setSurfaceType(RasterSurface);
    setTitle(QStringLiteral("Sela"));
    if (coversScreen_) {
        QSurfaceFormat translucent = format();
        translucent.setAlphaBufferSize(8);
        setFormat(translucent);
        setFlags(Qt::Window | Qt::FramelessWindowHint);
    }
    window_.setNeedsFrameHandler([this] { scheduleFrame(); });
}

ShareWindow::~ShareWindow() {
    window_.setNeedsFrameHandler({});
}

void ShareWindow::open() {
    if (!coversScreen_) {
        const CGSize size = window_.bounds().size;
        // The screens are laid out once for a screen of this size, as on a phone.
        const QSize pixels = (QSizeF(size.width, size.height) * unitsPerPoint()).toSize();
        setMinimumSize(pixels);
        setMaximumSize(pixels);
        resize(pixels);
        show();
    } else if (isWayland()) {
        // Behind a full-screen window of Wayland there is nothing to see, behind a maximized one there is.
        showMaximized();
    } else {
        // The size is asked for as well, for a display without a window manager to grant the state.
        setGeometry(screen()->geometry());
        showFullScreen();
    }
}

double ShareWindow::unitsPerPoint() const {
    return line_.hasScale ? line_.scale / devicePixelRatio() : 1;
}

CGPoint ShareWindow::toPoints(QPointF position) const {
    return {position.x() / unitsPerPoint(), position.y() / unitsPerPoint()};
}

bool ShareWindow::event(QEvent* event) {
    switch (event->type()) {
    case QEvent::UpdateRequest:
        drawFrame();
        return true;
    case QEvent::ApplicationPaletteChange:
    case QEvent::ThemeChange:
        window_.setUserInterfaceStyle(appearance(line_));
        exposed_ = QRect(QPoint(), size());
        scheduleFrame();
        break;
    case QEvent::Close:
        if (closeHandler_)
            closeHandler_();
        break;
    default:
        break;
    }
    return QWindow::event(event);
}

void ShareWindow::exposeEvent(QExposeEvent*) {
    if (!isExposed())
        return;
    exposed_ = QRect(QPoint(), size());
    drawFrame();
}

void ShareWindow::resizeEvent(QResizeEvent*) {
    store_.resize(size());
    window_.setScreenSize({width() / unitsPerPoint(), height() / unitsPerPoint()});
    exposed_ = QRect(QPoint(), size());
    scheduleFrame();
}

/// Asks for a frame at the display's pace: the compositor's where it tells, else by the refresh rate.
void ShareWindow::scheduleFrame() {
    if (!isExposed())
        return;
    if (isWayland()) {
        requestUpdate();
    } else if (!frameTimer_.isActive()) {
        const double rate = std::clamp(screen()->refreshRate(), 30.0, 240.0);
        const double wait = std::max(0.0, lastFrameTime_ + 1 / rate - monotonicSeconds());
        frameTimer_.start(static_cast<int>(std::ceil(wait * 1000)), Qt::PreciseTimer, this);
    }
}

void ShareWindow::timerEvent(QTimerEvent*) {
    frameTimer_.stop();
    drawFrame();
}

void ShareWindow::drawFrame() {
    if (!isExposed())
        return;
    lastFrameTime_ = monotonicSeconds();
    window_.prepareFrame();
    const CGRect dirty = window_.takeDirtyRect();
    QRegion region = std::exchange(exposed_, {});
    if (!dirty.isEmpty()) {
        const double unit = unitsPerPoint();
        const QRectF changed(dirty.minX() * unit, dirty.minY() * unit, dirty.size.width * unit,
                             dirty.size.height * unit);
        region += changed.toAlignedRect().adjusted(-1, -1, 1, 1);
    }
    region &= QRect(QPoint(), size());
    if (!region.isEmpty()) {
        store_.beginPaint(region);
        for (const QRect& part : region)
            drawPart(part);
        store_.endPaint();
        store_.flush(region);
    }
    if (window_.needsFrame())
        scheduleFrame();
}

/// Draws a part (in Qt's units) straight into the pixels of the backing store, which are a picture in memory
/// for a raster surface.
void ShareWindow::drawPart(const QRect& part) {
    auto* const surface = static_cast<QImage*>(store_.paintDevice());
    QImage pixels(surface->bits(), surface->width(), surface->height(), surface->bytesPerLine(),
                  surface->format());
    const double ratio = devicePixelRatio();
    const QRect area =
        QRectF(QPointF(part.topLeft()) * ratio, QSizeF(part.size()) * ratio).toAlignedRect() & pixels.rect();
    {
        QPainter painter(&pixels);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.fillRect(area, coversScreen_ ? QColor(Qt::transparent)
                                             : Snapshot::backdrop(window_.userInterfaceStyle()));
    }
    painter_.paint(pixels, area, window_, {pixelsPerPoint(), window_.userInterfaceStyle()});
}

void ShareWindow::press(QPointF position) {
    pressed_ = true;
    window_.touchBegan(toPoints(position));
}

void ShareWindow::release(QPointF position) {
    if (std::exchange(pressed_, false))
        window_.touchEnded(toPoints(position));
}

void ShareWindow::cancelPress() {
    finger_.reset();
    if (std::exchange(pressed_, false))
        window_.touchCancelled();
}

void ShareWindow::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && !pressed_)
        press(event->position());
}

void ShareWindow::mouseMoveEvent(QMouseEvent* event) {
    if (pressed_ && !finger_)
        window_.touchMoved(toPoints(event->position()));
}

void ShareWindow::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && !finger_)
        release(event->position());
}

void ShareWindow::focusOutEvent(QFocusEvent*) {
    cancelPress();
}

void ShareWindow::wheelEvent(QWheelEvent* event) {
    const double points = event->pixelDelta().isNull()
                              ? event->angleDelta().y() / wheelStepAngle * pointsPerWheelStep
                              : event->pixelDelta().y() / unitsPerPoint();
    window_.wheelScrolled(toPoints(event->position()), -points);
}

/// Follows the first finger; others are ignored until it is up.
void ShareWindow::touchEvent(QTouchEvent* event) {
    if (event->type() == QEvent::TouchCancel) {
        cancelPress();
        return;
    }
    for (const QEventPoint& point : event->points()) {
        if (point.state() == QEventPoint::Pressed && !pressed_) {
            finger_ = point.id();
            press(point.position());
        } else if (finger_ != point.id()) {
            continue;
        } else if (point.state() == QEventPoint::Updated) {
            window_.touchMoved(toPoints(point.position()));
        } else if (point.state() == QEventPoint::Released) {
            finger_.reset();
            release(point.position());
        }
    }
}

void ShareWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        close();
}

} // namespace sela
