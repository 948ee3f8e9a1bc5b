#pragma once

#include "host/ShareRequest.h"

class QMimeData;

namespace sela {

/// What a clipboard or a drop holds for a share request: the files it names, by `text/uri-list` or as a file
/// manager copies them, or else its picture.
struct MimeAttachments {
    Attachments attachments;
    bool onlyText = false; ///< there is text and nothing else that could be used

    /// Reads the data (null: an empty clipboard); files are examined, and a picture is decoded by the helper,
    /// before this returns. Main thread.
    static MimeAttachments in(const QMimeData* data);

    /// Whether the data names files or holds a picture, without examining them.
    static bool areIn(const QMimeData& data);
};

} // namespace sela
