#include "store/SharedItemLedger.h"

#include "platform/foundation/JSONWriter.h"
#include "store/ShareExtensionError.h"
#include "store/SharedFolder.h"

#include <algorithm>
#include <map>
#include <utility>

namespace sela::SharedItemLedger {

namespace {

std::optional<Data> textOf(const JSONWriter& writer) {
    if (!writer.isValid())
        return std::nullopt;
    return toData(writer.text());
}

/// The length up to which a ledger ends with its closing brace, and the step by which a longer one is padded:
/// a page of the settings (docs/formats.md). SQLite rewrites only those pages of a value that differ, but all
/// of them when its length does.
constexpr std::size_t roomStep = 65536;

std::size_t lengthWithRoom(std::size_t used, std::size_t before) {
    if (used <= before || used <= roomStep)
        return std::max(used, before);
    return (used + roomStep - 1) / roomStep * roomStep;
}

/// One entry's position in a ledger's text.
struct Member {
    std::size_t begin; ///< the first quotation mark of its key
    std::size_t end;   ///< after its record
    std::size_t comma; ///< the comma that follows; unset for the last
};

/// The positions of all entries of a valid ledger, in their order.
std::vector<Member> membersOf(std::string_view ledger) {
    std::vector<Member> members;
    int depth = 0;
    std::size_t key = std::string_view::npos;
    for (std::size_t i = 0; i < ledger.size(); ++i) {
        switch (ledger[i]) {
        case '"':
            if (depth == 1 && key == std::string_view::npos)
                key = i;
            for (++i; ledger[i] != '"'; ++i)
                if (ledger[i] == '\\')
                    ++i;
            break;
        case '{':
        case '[':
            ++depth;
            break;
        case '}':
        case ']':
            if (--depth == 1)
                members.push_back({std::exchange(key, std::string_view::npos), i + 1, 0});
            break;
        case ',':
            if (depth == 1)
                members.back().comma = i;
            break;
        default:
            break;
        }
    }
    return members;
}

/// The ledger's text with only these of its entries.
std::string packed(std::string_view ledger, const std::vector<Member>& kept) {
    std::string text = "{";
    for (const Member& member : kept) {
        if (text.size() > 1)
            text += ',';
        text += ledger.substr(member.begin, member.end - member.begin);
    }
    return text + '}';
}

/// The ledger's text with blanks in place of all entries but these, which are at least one.
std::string blanked(std::string_view ledger, const std::vector<Member>& kept) {
    std::string text(ledger.size(), ' ');
    text[ledger.find('{')] = '{';
    text[ledger.rfind('}')] = '}';
    for (const Member& member : kept) {
        ledger.copy(text.data() + member.begin, member.end - member.begin, member.begin);
        if (&member != &kept.back())
            text[member.comma] = ',';
    }
    return text;
}

} // namespace

Result<std::vector<Entry>> entries() {
    const Result<UserDefaults> defaults = openSharedDefaults();
    if (!defaults)
        return defaults.error();
    const Result<std::optional<Data>> text = defaults.value().readData(sharedItemsKey);
    if (!text)
        return text.error();
    if (!text.value())
        return std::vector<Entry>();
    Result<std::vector<Entry>> decoded = decode(*text.value());
    if (!decoded)
        return ShareExtensionError::make("the ledger: " + decoded.error()->localizedDescription());
    return decoded;
}

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

Result<Keys> keys(DataView ledger) {
    Keys all;
    const auto add = [&](std::string_view key) { all.emplace(key); };
    if (ErrorRef error = checkJSONObject<SharedItem>(ledger, add))
        return error;
    return all;
}

std::optional<Data> fresh(std::string_view key, const SharedItem& item) {
    return encode({{std::string(key), item}});
}

std::optional<Data> adding(DataView ledger, std::string_view key, const SharedItem& item) {
    const std::optional<Data> entry = fresh(key, item);
    if (!entry)
        return std::nullopt;
    // The entry is inserted before the closing brace, so that existing entries, whatever another program put
    // into them, are never rewritten; and the text is copied rather than encoded again.
    constexpr std::string_view whiteSpace = " \t\r\n";
    std::string_view body = asText(ledger);
    body = body.substr(0, body.rfind('}'));
    const bool empty = body[body.find_last_not_of(whiteSpace)] == '{';
    const std::string_view text = asText(*entry);
    const std::size_t used = body.size() + (empty ? 0 : 1) + text.size() - 1;
    // Allocated once at its final length: copying a long ledger is expensive.
    Data grown(lengthWithRoom(used, ledger.size()), std::byte{' '});
    auto end = std::ranges::copy(asData(body), grown.begin()).out;
    if (!empty)
        *end++ = std::byte{','};
    std::ranges::copy(asData(text.substr(1)), end);
    return grown;
}

Result<std::optional<Data>> removing(DataView ledger, const std::vector<Entry>& gone) {
    const Result<std::vector<Entry>> entries = decode(ledger);
    if (!entries)
        return entries.error();
    std::multimap<std::string_view, const SharedItem*> itemsGone;
    for (const auto& [key, item] : gone)
        itemsGone.emplace(key, &item);
    const std::string_view text = asText(ledger);
    const std::vector<Member> members = membersOf(text);
    std::vector<Member> kept;
    std::size_t used = 0;
    for (std::size_t i = 0; i < members.size(); ++i) {
        const Entry& entry = entries.value()[i];
        const auto [first, last] = itemsGone.equal_range(entry.first);
        if (std::any_of(first, last,
                        [&](const auto& candidate) { return *candidate.second == entry.second; }))
            continue;
        kept.push_back(members[i]);
        used += members[i].end - members[i].begin;
    }
    if (kept.empty())
        return std::optional<Data>();
    const bool keepsLength = ledger.size() > roomStep && used > ledger.size() / 2;
    return std::optional(toData(keepsLength ? blanked(text, kept) : packed(text, kept)));
}

std::optional<Data> encode(const std::vector<Entry>& entries) {
    JSONWriter writer;
    writer.beginObject();
    for (const auto& [key, item] : entries) {
        writer.key(key);
        writeJSONRecord(writer, item);
    }
    writer.endObject();
    return textOf(writer);
}

} // namespace sela::SharedItemLedger
