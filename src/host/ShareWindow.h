#pragma once

#include "host/CardPlacement.h"
#include "host/CommandLine.h"
#include "host/FocusRing.h"
#include "host/FullTextTip.h"
#include "host/KeyboardNavigation.h"
#include "host/PointerShade.h"
#include "host/ViewPainter.h"
#include "platform/uikit/UIWindow.h"

#include <QBackingStore>
#include <QBasicTimer>
#include <QWindow>

#include <functional>
#include <optional>
#include <utility>
#include <vector>

class QMimeData;

namespace sela {

class AccessibleWindow;

/// The desktop's window that shows a `UIWindow`: translucent over the whole screen where the desktop
/// composites, as the phone's sheet dims the application below it, else a dialog of the card's size, or a
/// window of the requested size. It draws only what changed, and only while something changes; mouse, finger
/// and wheel become touches, keys operate the controls, and screen readers find the elements of the screen.
/// Main thread only.
class ShareWindow : public QWindow {
public:
    /// Whether the clipboard can be read before a window has the keyboard focus. Where it cannot, as on
    /// Wayland, a window whose command line asks for the clipboard reads it as soon as it has the focus.
    static bool isClipboardOpen();

    /// `window` and `painter` must outlive this window.
    ShareWindow(UIWindow& window, ViewPainter& painter, const CommandLine& line,
                const CardPlacement& placement);
    ~ShareWindow() override;

    /// Called when the user closes the window.
    void setCloseHandler(std::function<void()> handler) { closeHandler_ = std::move(handler); }

    /// Called when the window has another size, before it is drawn so.
    void setResizeHandler(std::function<void()> handler) { resizeHandler_ = std::move(handler); }

    /// Called once, when the first frame was sent to the display.
    void setFirstFrameHandler(std::function<void()> handler) { firstFrameHandler_ = std::move(handler); }

    /// The handlers of pasted and dropped content: whether anything is accepted now, and one that takes the
    /// data (null: an empty clipboard).
    struct ContentHandler {
        std::function<bool()> isOpen;
        std::function<void(const QMimeData* data)> take;
    };
    void setContentHandler(ContentHandler handler) { contentHandler_ = std::move(handler); }

    /// Shows the window.
    void open();

    /// Makes a dialog as high as this (points), as far as the display has room; nothing else changes its
    /// size.
    void growTo(double height);

    QAccessibleInterface* accessibleRoot() const override;

    double pixelsPerPoint() const { return unitsPerPoint() * devicePixelRatio(); }

protected:
    bool event(QEvent* event) override;
    void exposeEvent(QExposeEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void touchEvent(QTouchEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    bool coversDisplay() const { return placement_.style == CardPlacement::Style::overDisplay; }
    bool isDialog() const { return placement_.style == CardPlacement::Style::dialog; }
    void openAsDialog();
    void setFixedSize(const CGSize& points);
    void shapeDialog();
    double unitsPerPoint() const;
    CGPoint toPoints(QPointF position) const;
    QRect toDesktop(const CGRect& rect) const;
    void scheduleFrame();
    void drawFrame();
    QImage& surface();
    QColor backdrop() const;
    std::vector<const UIView*> drawnViews() const;
    void drawPart(const QRect& part);
    void press(QPointF position);
    void release(QPointF position);
    void cancelPress();
    void pointAt(std::optional<CGPoint> point);
    CGRect updateAdornments();
    void paste();
    bool takesDrop(const QMimeData& data) const;
    AccessibleWindow& accessible();

    UIWindow& window_;
    ViewPainter& painter_;
    const CommandLine line_;
    const CardPlacement placement_;
    std::function<void()> closeHandler_;
    std::function<void()> resizeHandler_;
    std::function<void()> firstFrameHandler_;
    ContentHandler contentHandler_;
    KeyboardNavigation keyboard_;
    FocusRing ring_;
    PointerShade shade_;
    FullTextTip tip_;
    QBackingStore store_;
    QRegion exposed_;       ///< must be flushed to the display whether it changed or not
    double storeRatio_ = 0; ///< the pixel ratio that the store's content was drawn for; 0 when it has none
    QBasicTimer frameTimer_;
    double lastFrameTime_ = 0;
    std::optional<CGPoint> pointer_; ///< where the mouse is, in points; absent outside
    bool pressed_ = false;
    bool pastesOnFocus_;
    std::optional<int> finger_;
};

} // namespace sela
