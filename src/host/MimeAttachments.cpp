#include "host/MimeAttachments.h"

#include <QMimeData>
#include <QUrl>

#include <algorithm>

namespace sela {

namespace {

/// What file managers of the GNOME family put on the clipboard: "copy" or "cut", then a URL a line.
const QString copiedFiles = QStringLiteral("x-special/gnome-copied-files");

/// Kinds of pictures in order of preference, the one that loses least first.
const char* const preferredPictures[] = {"image/png", "image/webp", "image/jpeg", "image/tiff", "image/bmp"};

std::vector<std::string> filesIn(const QMimeData& data) {
    std::vector<std::string> files;
    for (const QUrl& url : data.urls())
        files.push_back(url.toEncoded().toStdString());
    if (!files.empty())
        return files;
    const QList<QByteArray> lines = data.data(copiedFiles).split('\n');
    for (const QByteArray& line : lines.mid(1))
        if (!line.trimmed().isEmpty())
            files.push_back(line.trimmed().toStdString());
    return files;
}

/// The type of the picture to take; empty when there is none.
QString pictureFormat(const QMimeData& data) {
    for (const char* const format : preferredPictures)
        if (data.hasFormat(QLatin1String(format)))
            return QLatin1String(format);
    const QStringList formats = data.formats();
    const auto found = std::ranges::find_if(
        formats, [](const QString& format) { return format.startsWith(QLatin1String("image/")); });
    return found == formats.end() ? QString() : *found;
}

} // namespace

bool MimeAttachments::areIn(const QMimeData& data) {
    return data.hasUrls() || data.hasFormat(copiedFiles) || !pictureFormat(data).isEmpty();
}

MimeAttachments MimeAttachments::in(const QMimeData* data) {
    MimeAttachments found;
    if (!data)
        return found;
    const QString picture = pictureFormat(*data);
    for (const std::string& file : filesIn(*data)) {
        // A picture dragged from a web page comes with its URL.
        if (picture.isEmpty() || file.starts_with("file:"))
            found.attachments.addFile(file);
    }
    if (found.attachments.isEmpty() && !picture.isEmpty()) {
        const QByteArray bytes = data->data(picture);
        found.attachments.addPicture(asData({bytes.constData(), static_cast<std::size_t>(bytes.size())}),
                                     picture.toStdString());
    }
    found.onlyText = found.attachments.isEmpty() && data->hasText();
    return found;
}

} // namespace sela
