// The least that a window of Qt takes: one of the card's size, filled once. The peer of the start of
// sela-share.

#include <QBackingStore>
#include <QGuiApplication>
#include <QPainter>
#include <QWindow>

namespace {

class EmptyWindow : public QWindow {
public:
    EmptyWindow() : store_(this) { setSurfaceType(RasterSurface); }

protected:
    void resizeEvent(QResizeEvent*) override { store_.resize(size()); }

    void exposeEvent(QExposeEvent*) override {
        if (!isExposed())
            return;
        const QRect all(QPoint(), size());
        store_.beginPaint(all);
        QPainter(store_.paintDevice()).fillRect(all, Qt::white);
        store_.endPaint();
        store_.flush(all);
    }

private:
    QBackingStore store_;
};

} // namespace

int main(int argc, char** argv) {
    QGuiApplication application(argc, argv);
    EmptyWindow window;
    window.resize(375, 667);
    window.show();
    return QGuiApplication::exec();
}
