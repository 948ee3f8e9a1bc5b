#pragma once

#include "platform/extension/NSExtensionContext.h"
#include "platform/extension/NSExtensionItem.h"
#include "platform/extension/NSItemProvider.h"
#include "platform/foundation/Data.h"
#include "platform/foundation/Error.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace sela {

/// Something that was named for a share request and cannot be added. A value.
struct LeftOut {
    std::string name; ///< as it was named; "-" for standard input
    ErrorRef reason;

    /// "a.txt: only pictures, videos and audio files can be added", in English.
    std::string description() const;

    /// The name of a file without its folders.
    std::string shortName() const;
};

/// The arguments of a share request: what can be added, and why the rest cannot. A value.
struct Attachments {
    NSExtensionItem::Attachments providers;

    /// One for each provider: as it was named ("-" for standard input); empty for what the clipboard held.
    std::vector<std::string> names;

    /// The total size of the files among them, in bytes; pictures without a file count nothing.
    std::int64_t totalSize = 0;

    /// One for each thing that cannot be added.
    std::vector<LeftOut> problems;

    bool isEmpty() const { return providers.empty() && problems.empty(); }

    /// Adds a regular file, named by its path or URL. It is a problem when it names nothing, a folder, a
    /// device, a FIFO or a socket, cannot be read, or is of a kind that the vault does not keep.
    void addFile(const std::string& argument);

    /// Adds a picture that has no file, from the bytes of a picture file of any kind; `origin` names their
    /// source in a problem. Called on the main thread, which waits for the decoding.
    void addPicture(DataView bytes, const std::string& origin);

    /// Reads a picture from standard input and adds it.
    void addStandardInput();

    void append(const Attachments& more);

private:
    void addProvider(std::shared_ptr<NSItemProvider> provider, const std::string& name);
};

/// What a command line names, in its order: the paths of files, file URLs, or "-" for a picture on standard
/// input. Called on the main thread.
Attachments attachmentsOf(const std::vector<std::string>& arguments);

/// The request: one input item with these attachments.
std::shared_ptr<NSExtensionContext> makeShareRequest(const Attachments& attachments);

} // namespace sela
