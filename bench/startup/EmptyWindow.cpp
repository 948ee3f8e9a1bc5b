// The minimum that a Qt window takes: one of the card's size, filled once, with a text in it if one is given.
// The peer of the start of sela-share.

#include <QBackingStore>
#include <QGuiApplication>
#include <QPainter>
#include <QWindow>

namespace {

class EmptyWindow : public QWindow {
public:
    explicit EmptyWindow(const QString& text) : store_(this), text_(text) { setSurfaceType(RasterSurface); }

protected:
    void resizeEvent(QResizeEvent*) override { store_.resize(size()); }

    void exposeEvent(QExposeEvent*) override {
        if (!isExposed())
            return;
        const QRect all(QPoint(), size());
        store_.beginPaint(all);
        QPainter painter(store_.paintDevice());
        painter.fillRect(all, Qt::white);
        if (!text_.isEmpty()) {
            painter.setFont(QFont(QStringLiteral("Roboto"), 12));
            painter.drawText(all, Qt::AlignCenter, text_);
        }
        painter.end();
        store_.endPaint();
        store_.flush(all);
    }

private:
    QBackingStore store_;
    const QString text_;
};

} // namespace

int main(int argc, char** argv) {
    QGuiApplication application(argc, argv);
    EmptyWindow window(argc > 1 ? QString::fromUtf8(argv[1]) : QString());
    window.resize(375, 667);
    window.show();
    return QGuiApplication::exec();
}
