#include "vault/ImportJournal.h"

#include "store/ShareExtensionError.h"
#include "store/SharedFolder.h"

#include <optional>

namespace sela::ImportJournal {

namespace {

constexpr std::string_view journalKey = "importJournal";

ErrorRef settingsMissing() {
    return ShareExtensionError::make("UserDefaults is nil");
}

} // namespace

Result<std::vector<Note>> read() {
    const std::optional<UserDefaults> defaults = sharedDefaults();
    if (!defaults)
        return settingsMissing();
    const Result<std::optional<Data>> text = defaults->readData(journalKey);
    if (!text)
        return text.error();
    Result<std::vector<Note>> notes =
        text.value() ? decodeJSONArray<Note>(*text.value()) : std::vector<Note>();
    return notes ? std::move(notes.value()) : std::vector<Note>();
}

ErrorRef write(const std::vector<Note>& notes) {
    JSONWriter writer;
    writer.beginArray();
    for (const Note& note : notes)
        writeJSONRecord(writer, note);
    writer.endArray();
    std::optional<UserDefaults> defaults = sharedDefaults();
    return defaults ? defaults->setData(journalKey, asData(writer.text())) : settingsMissing();
}

ErrorRef clear() {
    std::optional<UserDefaults> defaults = sharedDefaults();
    return defaults ? defaults->removeObject(journalKey) : settingsMissing();
}

} // namespace sela::ImportJournal
