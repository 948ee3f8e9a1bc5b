#pragma once

#include "platform/extension/NSExtensionContext.h"

#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace sela {

/// Builds the request of a command line: one input item with one attachment per argument, in their order.
/// Each argument is the path of a file, a file URL, or "-" for a picture that is read from standard input
/// now.
///
/// The other alternative has a line for each argument that cannot be used: it names nothing, a folder, a
/// device, a FIFO or a socket, cannot be read, or is no picture ("-"). Called on the main thread.
std::variant<std::shared_ptr<NSExtensionContext>, std::vector<std::string>>
makeShareRequest(const std::vector<std::string>& arguments);

} // namespace sela
