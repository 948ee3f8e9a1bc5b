#include "host/MimeAttachments.h"
#include "support/TemporaryHome.h"

#include <gtest/gtest.h>

#include <QMimeData>

namespace sela {

TEST(MimeAttachments, FindsFilesAndPicturesAndSaysWhatCannotBeUsed) {
    const TemporaryHome home;
    const QByteArray photo = "file://" + QByteArray::fromStdString(home.write("photo 1.jpg", "x").string());
    const QByteArray video = "file://" + QByteArray::fromStdString(home.write("video.mov", "x").string());
    const QByteArray folder = "file://" + QByteArray::fromStdString(home.path().string());
    struct Case {
        const char* name;
        QMap<QString, QByteArray> data;
        std::size_t attachments;
        std::size_t problems;
        bool onlyText;
        bool areIn;
    };
    const Case cases[] = {
        {"nothing", {}, 0, 0, false, false},
        {"text", {{"text/plain", photo}}, 0, 0, true, false},
        {"files",
         {{"text/uri-list", photo + "\r\n" + video + "\r\n"}, {"text/plain", photo}},
         2,
         0,
         false,
         true},
        {"copied files",
         {{"x-special/gnome-copied-files", "copy\n" + photo + "\n" + video}},
         2,
         0,
         false,
         true},
        {"cut files", {{"x-special/gnome-copied-files", "cut\n" + photo + "\n"}}, 1, 0, false, true},
        {"a folder too", {{"text/uri-list", photo + "\r\n" + folder}}, 1, 1, false, true},
        {"a missing file", {{"text/uri-list", photo + "x"}}, 0, 1, false, true},
        {"an address", {{"text/uri-list", "https://example.org/a.jpg"}}, 0, 1, false, true},
        {"no picture", {{"image/png", "no picture"}}, 0, 1, false, true},
        {"a file and its picture",
         {{"text/uri-list", photo}, {"image/png", "no picture"}},
         1,
         0,
         false,
         true},
        {"an address and no picture",
         {{"text/uri-list", "https://example.org/a"}, {"image/png", "x"}},
         0,
         1,
         false,
         true},
    };
    for (const Case& c : cases) {
        QMimeData data;
        for (auto entry = c.data.begin(); entry != c.data.end(); ++entry)
            data.setData(entry.key(), entry.value());
        const MimeAttachments found = MimeAttachments::in(&data);
        EXPECT_EQ(found.attachments.size(), c.attachments) << c.name;
        EXPECT_EQ(found.problems.size(), c.problems) << c.name;
        EXPECT_EQ(found.onlyText, c.onlyText) << c.name;
        EXPECT_EQ(MimeAttachments::areIn(data), c.areIn) << c.name;
    }
    EXPECT_TRUE(MimeAttachments::in(nullptr).attachments.empty());
}

} // namespace sela
