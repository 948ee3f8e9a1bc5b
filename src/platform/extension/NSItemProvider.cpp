#include "platform/extension/NSItemProvider.h"

#include "platform/extension/TypeIdentifier.h"
#include "platform/foundation/ThreadPoolQueue.h"

#include <utility>

namespace sela {

namespace {

/// One thread: a request loads one attachment at a time anyway. Never destroyed, since an item may still be
/// loading when main ends.
ThreadPoolQueue& loadingQueue() {
    static auto* const queue = new ThreadPoolQueue(1);
    return *queue;
}

std::shared_ptr<NSItemProvider> providerOf(NSItemProvider::Item item, const std::string& typeIdentifier,
                                           std::string suggestedName = {},
                                           std::optional<URL> file = std::nullopt) {
    return std::make_shared<NSItemProvider>(
        std::vector{typeIdentifier},
        [item = std::move(item)](const std::string&) -> Result<NSItemProvider::Item> { return item; },
        std::move(suggestedName), std::move(file));
}

} // namespace

NSItemProvider::NSItemProvider(std::vector<std::string> typeIdentifiers, Loader loader,
                               std::string suggestedName, std::optional<URL> file)
    : typeIdentifiers_(std::move(typeIdentifiers)), loader_(std::move(loader)),
      suggestedName_(std::move(suggestedName)), file_(std::move(file)) {}

std::shared_ptr<NSItemProvider> NSItemProvider::ofFile(const URL& file) {
    const std::string name = file.lastPathComponent();
    return providerOf(file, std::string(typeIdentifierOfName(name)), name, file);
}

std::shared_ptr<NSItemProvider> NSItemProvider::ofImage(const UIImage& image) {
    return providerOf(image, "public.image");
}

std::shared_ptr<NSItemProvider> NSItemProvider::ofData(Data data, const std::string& typeIdentifier) {
    return providerOf(std::move(data), typeIdentifier);
}

std::shared_ptr<NSItemProvider> NSItemProvider::ofText(std::string text) {
    return providerOf(std::move(text), "public.utf8-plain-text");
}

void NSItemProvider::suspendLoading() {
    loadingQueue().suspend();
}

void NSItemProvider::resumeLoading() {
    loadingQueue().resume();
}

void NSItemProvider::loadItem(const std::string& typeIdentifier, CompletionHandler completion) const {
    loadingQueue().async([loader = loader_, typeIdentifier, completion = std::move(completion)] {
        const Result<Item> item = loader(typeIdentifier);
        if (item)
            completion(item.value(), nullptr);
        else
            completion(Item(), item.error());
    });
}

} // namespace sela
