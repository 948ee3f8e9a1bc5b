#pragma once

#include "platform/foundation/Data.h"
#include "platform/foundation/Error.h"
#include "platform/foundation/InputStream.h"
#include "platform/foundation/OutputStream.h"
#include "platform/foundation/URL.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sela {

/// The attributes of a file.
struct FileAttributes {
    enum class Type { regular, directory, symbolicLink, other };

    Type type = Type::other;
    std::int64_t size = 0;       ///< bytes
    double modificationDate = 0; ///< seconds since 1970
    std::uint64_t device = 0;    ///< with `inode`, identifies the file
    std::uint64_t inode = 0;

    bool isSameFile(const FileAttributes& other) const {
        return device == other.device && inode == other.inode;
    }
};

/// What to do when a file to be made exists already.
enum class WhenThere { overwrite, fail };

/// The file operations of the group's programs, built from the calls of the `Disk` in use.
///
/// Without state; operations may be called from any thread. Files made have mode 0600 and folders 0700,
/// whatever the umask allows beyond that. Errors are those of the system, and name the file.
class FileManager {
public:
    static FileManager& defaultManager();

    /// The folder of an application group, `<data>/sela/groups/<groupId>`, where `<data>` is $XDG_DATA_HOME
    /// or
    /// ~/.local/share; absent while the main application has not provisioned the group (there is no such
    /// folder), or when the identifier is no single path component.
    std::optional<URL> containerURL(std::string_view groupId) const;

    /// Where the folder of an application group is to be made; absent when there is no home or the identifier
    /// is no single path component.
    std::optional<URL> provisioningURL(std::string_view groupId) const;

    /// Whether something exists at the path; a dangling symbolic link does not count.
    bool fileExists(const std::string& path) const;

    /// The attributes of the file at a path, symbolic links followed (stat).
    Result<FileAttributes> attributesOfItem(const std::string& path) const;

    /// The attributes of the entry at a path, which may be a symbolic link itself (lstat).
    Result<FileAttributes> attributesOfEntry(const std::string& path) const;

    /// Makes the folder and its missing parents, and flushes their entries, also for a folder that exists
    /// already.
    ErrorRef createDirectory(const std::string& path);

    /// Removes the rights of group and others to a file or folder that belongs to the user; another program
    /// may have made it with them. One of another owner stays as it is; one that is missing is no error.
    void closeToOthers(const std::string& path);

    /// The names in a folder, "." and ".." left out, sorted by their bytes.
    Result<std::vector<std::string>> contentsOfDirectory(const std::string& path) const;

    /// Removes a file (a link itself, not what it leads to).
    ErrorRef removeItem(const std::string& path);

    /// Hard-links or renames a file. `to` must not exist yet (EEXIST otherwise) and be in the same file
    /// system (EXDEV otherwise). It is durable once the folder of `to` was flushed.
    ErrorRef linkItem(const std::string& from, const std::string& to);
    ErrorRef moveItem(const std::string& from, const std::string& to);

    /// Flushes the entries of a folder. It is no error when the file system does not support that.
    ErrorRef synchronizeDirectory(const std::string& path);

    struct RegularFile {
        FileDescriptor descriptor;
        std::int64_t size; ///< bytes
    };

    /// Opens a regular file for reading, without ever blocking; the error when it is missing, unreadable, or
    /// of another kind.
    Result<RegularFile> openRegularFile(const std::string& path);

    /// The same as a stream.
    Result<InputStream> inputStream(const URL& source);

    /// Opens a file for writing from its start, making it if it is missing, and reserves `expectedSize` bytes
    /// of the disk where the file system can. A symbolic link there is not followed but is an error; so is an
    /// existing file where none is allowed, and a full disk, in which case the new file is removed again.
    Result<OutputStream> outputStream(const URL& destination, std::int64_t expectedSize,
                                      WhenThere whenThere = WhenThere::overwrite);

    /// Writes a whole file atomically: into a temporary file of the same folder, which is flushed and then
    /// renamed. On an error no temporary file is left and the destination is unchanged, except that it may be
    /// the new file, not yet durable, when only the fsync of the folder failed. `written` (which may be
    /// empty) is called after each block of 2 MiB and at the end, with the number of bytes so far; an error
    /// that it returns ends the writing.
    ErrorRef writeAtomically(DataView bytes, const URL& destination,
                             const std::function<ErrorRef(std::size_t)>& written = {});

    /// All bytes of a regular file; an error when it is larger than `maximumSize`.
    Result<Data> contentsOfFile(const std::string& path, std::int64_t maximumSize);
};

/// Whether a text can name a file inside a folder: not empty, not "." or "..", without "/" and zero bytes.
bool isSinglePathComponent(std::string_view name);

} // namespace sela
