#include "host/MimeAttachments.h"
#include "support/TemporaryHome.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QImage>
#include <QMimeData>

namespace sela {

TEST(MimeAttachments, FindsFilesAndPicturesAndSaysWhatCannotBeUsed) {
    const TemporaryHome home;
    const QByteArray photo = "file://" + QByteArray::fromStdString(home.write("photo 1.jpg", "x").string());
    const QByteArray video = "file://" + QByteArray::fromStdString(home.write("video.mov", "x").string());
    const QByteArray folder = "file://" + QByteArray::fromStdString(home.path().string());
    const QString files = QStringLiteral("text/uri-list"), text = QStringLiteral("text/plain");
    const QString copied = QStringLiteral("x-special/gnome-copied-files");
    const QString picture = QStringLiteral("image/png");
    QByteArray jpeg;
    QBuffer buffer(&jpeg);
    buffer.open(QIODevice::WriteOnly);
    QImage(1, 1, QImage::Format_RGB32).save(&buffer, "JPEG");
    const struct {
        const char* name;
        QMap<QString, QByteArray> data;
        std::size_t attachments;
        std::size_t problems;
    } cases[] = {
        {"nothing", {}, 0, 0},
        {"only text", {{text, photo}}, 0, 0},
        {"files", {{files, photo + "\r\n" + video + "\r\n"}, {text, photo}}, 2, 0},
        {"copied files", {{copied, "copy\n" + photo + "\n" + video}}, 2, 0},
        {"cut files", {{copied, "cut\n" + photo + "\n"}}, 1, 0},
        {"a folder too", {{files, photo + "\r\n" + folder}}, 1, 1},
        {"a missing file", {{files, photo + "x"}}, 0, 1},
        {"an address", {{files, "https://example.org/a.jpg"}}, 0, 1},
        {"no picture", {{picture, "no picture"}}, 0, 1},
        {"a file and its picture", {{files, photo}, {picture, "no picture"}}, 1, 0},
        {"a picture out of a page",
         {{files, "https://example.org/a.png"}, {QStringLiteral("image/jpeg"), jpeg}},
         1,
         0},
        {"an address and no picture", {{files, "https://example.org/a"}, {picture, "x"}}, 0, 1},
    };
    for (const auto& [name, entries, attachments, problems] : cases) {
        QMimeData data;
        for (auto entry = entries.begin(); entry != entries.end(); ++entry)
            data.setData(entry.key(), entry.value());
        const MimeAttachments found = MimeAttachments::in(&data);
        EXPECT_EQ(found.attachments.providers.size(), attachments) << name;
        EXPECT_EQ(found.attachments.problems.size(), problems) << name;
        EXPECT_EQ(found.onlyText, name == std::string_view("only text")) << name;
        EXPECT_EQ(MimeAttachments::areIn(data), attachments + problems > 0) << name;
    }
    EXPECT_TRUE(MimeAttachments::in(nullptr).attachments.isEmpty());
}

} // namespace sela
