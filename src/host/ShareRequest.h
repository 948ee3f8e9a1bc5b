#pragma once

#include "platform/extension/NSExtensionContext.h"
#include "platform/extension/NSItemProvider.h"
#include "platform/foundation/Data.h"

#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace sela {

/// An attachment, or a line that says why there can be none.
using Attachment = std::variant<std::shared_ptr<NSItemProvider>, std::string>;

/// The attachment of an ordinary file that can be read, named by its path or URL.
Attachment attachmentOfFile(const std::string& argument);

/// A picture in memory, decoded from the bytes of a picture file of any kind; `origin` says in a problem's
/// line where they came from. Called on the main thread, which waits for the decoding.
Attachment attachmentOfPicture(DataView bytes, const std::string& origin);

/// Builds the request of a command line: one input item with one attachment per argument, in their order.
/// Each argument is the path of a file, a file URL, or "-" for a picture that is read from standard input
/// now.
///
/// The other alternative has a line for each argument that cannot be used: it names nothing, a folder, a
/// device, a FIFO or a socket, cannot be read, or is no picture ("-"). Called on the main thread.
std::variant<std::shared_ptr<NSExtensionContext>, std::vector<std::string>>
makeShareRequest(const std::vector<std::string>& arguments);

/// The size of the files among the arguments of a request together, in bytes; a picture on standard input
/// counts nothing, nor does a file that is gone by now. Main thread.
std::int64_t sizeOfFiles(const std::vector<std::string>& arguments);

} // namespace sela
