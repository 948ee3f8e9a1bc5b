#pragma once

#include <string_view>
#include <vector>

namespace sela {

/// The kind of a file, by its name alone.
enum class FileKind { image, video, audio, other };

/// The kind of a file by the extension of its name, upper or lower case alike; `other` for anything the vault
/// does not keep, a name without extension included. Thread-safe.
FileKind fileKind(std::string_view fileName);

/// The extensions of all kinds that the vault keeps, in lower case. Thread-safe.
std::vector<std::string_view> keptExtensions();

} // namespace sela
