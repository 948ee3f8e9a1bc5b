#include "host/ShareWindow.h"

#include "host/AccessibleWindow.h"
#include "host/Displays.h"
#include "host/MimeAttachments.h"
#include "host/QtConversions.h"
#include "host/ScreenElements.h"
#include "host/Snapshot.h"
#include "platform/foundation/Heap.h"
#include "platform/foundation/MonotonicClock.h"
#include "platform/uikit/UIAccessibility.h"
#include "share/SelaShareExtensionEntryVc.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QIcon>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>

#include <algorithm>
#include <cmath>
#include <utility>

namespace sela {

namespace {

/// Points that a list moves by a step of a wheel without finer units.
constexpr double pointsPerWheelStep = 48;

/// The angle that Qt reports for one step of a wheel, in eighths of a degree.
constexpr double wheelStepAngle = 120;

/// The region of a window with the card's rounded corners.
QRegion roundedRegion(const QSize& size, double radius) {
    QPainterPath path;
    path.addRoundedRect(QRectF(QPointF(), size), radius, radius);
    return QRegion(path.toFillPolygon().toPolygon());
}

} // namespace

ShareWindow::ShareWindow(UIWindow& window, ViewPainter& painter, const CommandLine& line,
                         const CardPlacement& placement)
    : window_(window), painter_(painter), line_(line), placement_(placement), keyboard_(window),
      tip_(window, placement.scale()), store_(this), pastesOnFocus_(line.paste && !isClipboardOpen()) {
    setSurfaceType(RasterSurface);
    setTitle(QStringLiteral("Sela"));
    if (QScreen* const display = displayWithPointer())
        setScreen(display);
    if (coversDisplay()) {
        QSurfaceFormat translucent = format();
        translucent.setAlphaBufferSize(8);
        setFormat(translucent);
        setFlags(Qt::Window | Qt::FramelessWindowHint);
    }
    window_.setNeedsFrameHandler([this] { scheduleFrame(); });
    QAccessible::installFactory([](const QString&, QObject* object) -> QAccessibleInterface* {
        auto* const shown = dynamic_cast<ShareWindow*>(object);
        if (!shown)
            return nullptr;
        return new AccessibleWindow(*shown, {shown->window_, shown->keyboard_,
                                             [shown](const CGRect& rect) { return shown->toDesktop(rect); }});
    });
    UIAccessibility::setAnnouncementHandler([this](const std::string& text) {
        if (QAccessible::isActive())
            accessible().announce(text);
    });
}

ShareWindow::~ShareWindow() {
    window_.setNeedsFrameHandler({});
    UIAccessibility::setAnnouncementHandler({});
    if (QAccessible::isActive())
        QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(&accessible()));
}

void ShareWindow::open() {
    if (!coversDisplay()) {
        openAsDialog();
    } else if (isWayland()) {
        // Behind a full-screen window of Wayland there is nothing to see, behind a maximized one there is.
        showMaximized();
    } else {
        // The size is asked for as well, for a display without a window manager to grant the state.
        setGeometry(screen()->geometry());
        showFullScreen();
    }
}

/// The screens are laid out once, as on a phone.
void ShareWindow::openAsDialog() {
    setFixedSize(placement_.window);
    if (isDialog())
        setFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint);
    show();
}

/// Centred on the display.
void ShareWindow::setFixedSize(const CGSize& points) {
    const QSize units = (QSizeF(points.width, points.height) * unitsPerPoint()).toSize();
    setMinimumSize(units);
    setMaximumSize(units);
    QRect place(QPoint(), units);
    place.moveCenter(screen()->availableGeometry().center());
    setGeometry(place);
}

void ShareWindow::growTo(double height) {
    const QMargins frame = frameMargins();
    const int room = screen()->availableSize().height() - frame.top() - frame.bottom();
    const double possible = std::min(height, room / unitsPerPoint());
    if (isDialog() && possible * unitsPerPoint() > minimumHeight())
        setFixedSize({placement_.window.width, possible});
}

/// Gives a dialog the card's corners where no window manager put a frame around it.
void ShareWindow::shapeDialog() {
    const double radius = SelaShareExtensionEntryVc::cornerRadius * placement_.scale() * unitsPerPoint();
    setMask(frameMargins().isNull() ? roundedRegion(size(), radius) : QRegion());
}

double ShareWindow::unitsPerPoint() const {
    return line_.hasScale ? line_.scale / devicePixelRatio() : 1;
}

CGPoint ShareWindow::toPoints(QPointF position) const {
    return {position.x() / unitsPerPoint(), position.y() / unitsPerPoint()};
}

QRect ShareWindow::toDesktop(const CGRect& rect) const {
    const double unit = unitsPerPoint();
    const QRectF own(rect.minX() * unit, rect.minY() * unit, rect.size.width * unit, rect.size.height * unit);
    return own.toAlignedRect().translated(mapToGlobal(QPoint()));
}

AccessibleWindow& ShareWindow::accessible() {
    return static_cast<AccessibleWindow&>(*accessibleRoot());
}

QAccessibleInterface* ShareWindow::accessibleRoot() const {
    return QAccessible::queryAccessibleInterface(const_cast<ShareWindow*>(this));
}

bool ShareWindow::isClipboardOpen() {
    return !isWayland();
}

bool ShareWindow::takesDrop(const QMimeData& data) const {
    return contentHandler_.isOpen && contentHandler_.isOpen() && MimeAttachments::areIn(data);
}

bool ShareWindow::event(QEvent* event) {
    switch (event->type()) {
    case QEvent::UpdateRequest:
        drawFrame();
        return true;
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop: {
        auto& drop = static_cast<QDropEvent&>(*event);
        if (!takesDrop(*drop.mimeData()))
            break;
        drop.setDropAction(Qt::CopyAction);
        drop.accept();
        if (event->type() == QEvent::Drop)
            contentHandler_.take(drop.mimeData());
        return true;
    }
    case QEvent::Enter:
        pointAt(toPoints(static_cast<QEnterEvent&>(*event).position()));
        return true;
    case QEvent::Leave:
        pointAt(std::nullopt);
        return true;
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
    if (isDialog())
        shapeDialog();
    exposed_ = QRect(QPoint(), size());
    drawFrame();
}

void ShareWindow::resizeEvent(QResizeEvent*) {
    store_.resize(size());
    storeRatio_ = 0;
    window_.setSize({width() / unitsPerPoint(), height() / unitsPerPoint()});
    if (isDialog())
        shapeDialog();
    window_.prepareFrame();
    if (resizeHandler_)
        resizeHandler_();
    exposed_ = QRect(QPoint(), size());
    scheduleFrame();
}

/// Requests a frame at the display's rate: by the compositor's frame callbacks on Wayland, else by the
/// refresh rate.
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
    keyboard_.catchUp();
    const CGRect adornments = updateAdornments();
    const CGRect dirty = window_.takeDirtyRect().unionWith(adornments);
    // Parts that were only exposed again are in the backing store already.
    QRegion region;
    const bool isNew = std::exchange(storeRatio_, devicePixelRatio()) != devicePixelRatio();
    if (isNew)
        region = QRect(QPoint(), size());
    if (!dirty.isEmpty()) {
        const double unit = unitsPerPoint();
        const QRectF changed(dirty.minX() * unit, dirty.minY() * unit, dirty.size.width * unit,
                             dirty.size.height * unit);
        region += changed.toAlignedRect().adjusted(-1, -1, 1, 1);
    }
    region &= QRect(QPoint(), size());
    if (!region.isEmpty()) {
        store_.beginPaint(region);
        if (isNew)
            populatePages(surface().bits(), static_cast<std::size_t>(surface().sizeInBytes()));
        for (const QRect& part : region)
            drawPart(part);
        store_.endPaint();
    }
    if (const QRegion shown = region + std::exchange(exposed_, {}); !shown.isEmpty())
        store_.flush(shown);
    if (const auto handler = std::exchange(firstFrameHandler_, {})) {
        handler();
        // For title bars and task bars that do not look for it in the desktop file.
        setIcon(QIcon::fromTheme(QGuiApplication::desktopFileName()));
    }
    if (QAccessible::isActive())
        accessible().update();
    if (window_.needsFrame())
        scheduleFrame();
}

/// Moves the focus ring, the pointer's shade and the tip to the views that have the focus and the pointer
/// now, which can change without either moving. Returns the area that changed, in points.
CGRect ShareWindow::updateAdornments() {
    UIView* const focused = keyboard_.focusedView();
    UIView* const pointed = pointer_ ? ScreenElements::controlAt(window_, *pointer_) : nullptr;
    if (pointed)
        setCursor(Qt::PointingHandCursor);
    else
        unsetCursor();
    tip_.show(pointed ? pointed : focused);
    window_.prepareFrame();
    return ring_.move(window_, focused).unionWith(shade_.move(window_, pointed, pressed_));
}

/// The pixels of the backing store, a QImage for a raster surface; valid between its `beginPaint` and
/// `endPaint`.
QImage& ShareWindow::surface() {
    return *static_cast<QImage*>(store_.paintDevice());
}

/// What lies below the screens.
QColor ShareWindow::backdrop() const {
    switch (placement_.style) {
    case CardPlacement::Style::overDisplay:
        break;
    case CardPlacement::Style::dialog:
        return toQt(UIColor::named("AppCard").resolve(window_.traitCollection()));
    case CardPlacement::Style::asAsked:
        return Snapshot::backdrop(window_.traitCollection());
    }
    return Qt::transparent;
}

/// The views to draw, from bottom to top: the whole window, but of a dialog's root view only its subviews,
/// since there is nothing to dim around the card.
std::vector<const UIView*> ShareWindow::drawnViews() const {
    if (!isDialog())
        return {&window_};
    std::vector<const UIView*> views;
    for (const UIView* const view : window_.subviews()) {
        if (view == window_.subviews().front())
            views.assign(view->subviews().begin(), view->subviews().end());
        else
            views.push_back(view);
    }
    return views;
}

/// Draws a part (in Qt's units) directly into the pixels of the backing store.
void ShareWindow::drawPart(const QRect& part) {
    QImage pixels(surface().bits(), surface().width(), surface().height(), surface().bytesPerLine(),
                  surface().format());
    const double ratio = devicePixelRatio();
    const QRect area =
        QRectF(QPointF(part.topLeft()) * ratio, QSizeF(part.size()) * ratio).toAlignedRect() & pixels.rect();
    {
        QPainter painter(&pixels);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.fillRect(area, backdrop());
    }
    for (const UIView* const view : drawnViews())
        painter_.paint(pixels, area, *view, {pixelsPerPoint(), window_.traitCollection()});
    shade_.paint(pixels, area, pixelsPerPoint(), window_.traitCollection());
    ring_.paint(pixels, area, pixelsPerPoint(), window_.traitCollection());
}

/// The mouse is at a point (points), or not over the window.
void ShareWindow::pointAt(std::optional<CGPoint> point) {
    pointer_ = point;
    scheduleFrame();
}

void ShareWindow::press(QPointF position) {
    pressed_ = true;
    scheduleFrame();
    window_.touchBegan(toPoints(position));
}

void ShareWindow::release(QPointF position) {
    if (std::exchange(pressed_, false))
        window_.touchEnded(toPoints(position));
    scheduleFrame();
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
    pointAt(toPoints(event->position()));
    if (pressed_ && !finger_)
        window_.touchMoved(toPoints(event->position()));
}

void ShareWindow::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && !finger_)
        release(event->position());
}

void ShareWindow::focusInEvent(QFocusEvent*) {
    if (std::exchange(pastesOnFocus_, false))
        paste();
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
            pointAt(std::nullopt);
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

void ShareWindow::paste() {
    if (contentHandler_.isOpen && contentHandler_.isOpen())
        contentHandler_.take(QGuiApplication::clipboard()->mimeData());
}

void ShareWindow::keyPressEvent(QKeyEvent* event) {
    if (!event->matches(QKeySequence::Paste))
        keyboard_.press({event->key(), event->text(), event->isAutoRepeat()});
    else if (!event->isAutoRepeat())
        paste();
    scheduleFrame();
}

} // namespace sela
