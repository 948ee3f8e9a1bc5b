/// A small window at the bottom of the screen that offers the files FILE... to drag. It tells what became of
/// the drag, and stays, since the target fetches the files from it.

#include <QDrag>
#include <QGuiApplication>
#include <QMimeData>
#include <QMouseEvent>
#include <QUrl>
#include <QWindow>

#include <cstdio>

namespace {

class Source : public QWindow {
    void mousePressEvent(QMouseEvent*) override {
        QList<QUrl> urls;
        for (const QString& file : QGuiApplication::arguments().mid(1))
            urls.append(QUrl::fromLocalFile(file));
        auto* const data = new QMimeData;
        data->setUrls(urls);
        auto* const drag = new QDrag(this);
        drag->setMimeData(data);
        std::puts(drag->exec(Qt::CopyAction) == Qt::CopyAction ? "copied" : "refused");
        std::fflush(stdout);
    }
};

} // namespace

int main(int count, char** arguments) {
    QGuiApplication application(count, arguments);
    Source source;
    source.setTitle(QStringLiteral("drag-source"));
    source.setGeometry(0, 740, 60, 60);
    source.show();
    return QGuiApplication::exec();
}
