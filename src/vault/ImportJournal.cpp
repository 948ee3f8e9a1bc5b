#include "vault/ImportJournal.h"

#include "store/SharedFolder.h"

#include <optional>

namespace sela::ImportJournal {

namespace {

constexpr std::string_view journalKey = "importJournal";

} // namespace

Result<std::vector<Note>> read() {
    const Result<UserDefaults> defaults = openSharedDefaults();
    if (!defaults)
        return defaults.error();
    const Result<std::optional<Data>> text = defaults.value().readData(journalKey);
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
    Result<UserDefaults> defaults = openSharedDefaults();
    return defaults ? defaults.value().setData(journalKey, asData(writer.text())) : defaults.error();
}

ErrorRef clear() {
    Result<UserDefaults> defaults = openSharedDefaults();
    return defaults ? defaults.value().removeObject(journalKey) : defaults.error();
}

} // namespace sela::ImportJournal
