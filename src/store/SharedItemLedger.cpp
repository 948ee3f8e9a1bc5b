#include "store/SharedItemLedger.h"

#include "platform/foundation/JSONWriter.h"

namespace sela::SharedItemLedger {

namespace {

std::optional<Data> textOf(const JSONWriter& writer) {
    if (!writer.isValid())
        return std::nullopt;
    return toData(writer.text());
}

} // namespace

std::string key(const SharedItem& item) {
    std::string key;
    for (const std::string& name : item.albumNames) {
        for (const char c : name) {
            key += c;
            if (c == '-')
                key += '-';
        }
        key += '-';
    }
    key += item.fake ? "fake" : "normal";
    return key + item.fileName;
}

Result<std::vector<Entry>> decode(DataView ledger) {
    return decodeJSONObject<SharedItem>(ledger);
}

Result<bool> contains(DataView ledger, std::string_view key) {
    bool found = false;
    SharedItem item;
    const auto next = [&](std::string_view entryKey) -> void* {
        found = found || entryKey == key;
        item = SharedItem();
        return &item;
    };
    if (ErrorRef error = readJSONObject(ledger, SharedItem::jsonFields(), next))
        return error;
    return found;
}

std::optional<Data> fresh(std::string_view key, const SharedItem& item) {
    return encode({{std::string(key), item}});
}

std::optional<Data> adding(DataView ledger, std::string_view key, const SharedItem& item) {
    const std::optional<Data> entry = fresh(key, item);
    if (!entry)
        return std::nullopt;
    // The entry goes before the closing brace, so that an entry that stood there before, whatever another
    // program put into it, is never rewritten; and the work is a copy rather than an encoding of everything.
    constexpr std::string_view whiteSpace = " \t\r\n";
    std::string_view body = asText(ledger);
    body = body.substr(0, body.rfind('}'));
    const bool empty = body[body.find_last_not_of(whiteSpace)] == '{';
    std::string grown;
    grown.reserve(body.size() + entry->size());
    grown.append(body);
    if (!empty)
        grown += ',';
    grown.append(asText(*entry).substr(1));
    return toData(grown);
}

std::optional<Data> encode(const std::vector<Entry>& entries) {
    JSONWriter writer;
    writer.beginObject();
    for (const auto& [key, item] : entries) {
        writer.key(key);
        writeJSONRecord(writer, SharedItem::jsonFields(), &item);
    }
    writer.endObject();
    return textOf(writer);
}

} // namespace sela::SharedItemLedger
