#pragma once

#include "platform/extension/NSObject.h"
#include "platform/foundation/Data.h"
#include "platform/foundation/Error.h"
#include "platform/foundation/URL.h"
#include "platform/media/UIImage.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace sela {

/// One attachment of a share request: lists the types in which it is available, and loads it. Immutable; any
/// thread.
class NSItemProvider : public NSObject {
public:
    /// What loading yields: nothing, the URL of a file, a picture, bytes, or a text.
    using Item = std::variant<std::monostate, URL, UIImage, Data, std::string>;

    using CompletionHandler = std::function<void(const Item& item, const ErrorRef& error)>;

    /// Makes the item for one of the registered type identifiers; runs on the loading queue and may block.
    using Loader = std::function<Result<Item>(const std::string& typeIdentifier)>;

    NSItemProvider(std::vector<std::string> typeIdentifiers, Loader loader, std::string suggestedName = {},
                   std::optional<URL> file = std::nullopt);

    /// A provider of a file's URL under the type of its name.
    static std::shared_ptr<NSItemProvider> ofFile(const URL& file);

    /// A provider of a picture in memory, as a clipboard holds one.
    static std::shared_ptr<NSItemProvider> ofImage(const UIImage& image);

    /// A provider of bytes of that type.
    static std::shared_ptr<NSItemProvider> ofData(Data data, const std::string& typeIdentifier);

    /// A provider of a text.
    static std::shared_ptr<NSItemProvider> ofText(std::string text);

    /// The types, the most specific first; may be empty.
    const std::vector<std::string>& registeredTypeIdentifiers() const { return typeIdentifiers_; }

    /// The file's name; empty when it has none.
    const std::string& suggestedName() const { return suggestedName_; }

    /// The file whose URL loading will yield; absent when that is not known before.
    const std::optional<URL>& file() const { return file_; }

    /// Loads the item on the loading queue, one item of the process at a time and never on the main thread,
    /// and calls `completion` there, once: with the item, or with an error and no item.
    void loadItem(const std::string& typeIdentifier, CompletionHandler completion) const;

    /// Starts no further load in the process until `resumeLoading`.
    static void suspendLoading();
    static void resumeLoading();

private:
    const std::vector<std::string> typeIdentifiers_;
    const Loader loader_;
    const std::string suggestedName_;
    const std::optional<URL> file_;
};

} // namespace sela
