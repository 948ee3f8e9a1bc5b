#pragma once

#include "platform/foundation/Data.h"
#include "platform/foundation/Error.h"
#include "platform/foundation/JSONWriter.h"
#include "platform/foundation/Secret.h"

#include <array>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace sela {

/// One member of a flat JSON record and the data member that keeps its value, whose type says what the value
/// is: a text (required), a text that may be missing or null (one may be a secret), a Boolean (required), a
/// list of texts (required).
///
/// A record type lists its members once, in the order of writing, as an array that a static `jsonMembers()`
/// returns; it serves reading and writing alike.
template<class Record>
struct JSONMember {
    std::string_view key;
    std::variant<std::string Record::*, std::optional<std::string> Record::*, std::optional<Secret> Record::*,
                 bool Record::*, std::vector<std::string> Record::*>
        member;
};

/// A member of the record that is being read, and the destination of its value; a null pointer where the
/// value is only checked.
struct JSONSlot {
    std::string_view key;
    std::variant<std::string*, std::optional<std::string>*, std::optional<Secret>*, bool*,
                 std::vector<std::string>*>
        place;
};

/// Called at the start of each record with its key (empty inside an array). Returns the slots to fill, always
/// the same ones except for their destinations, which are valid until the next call.
using JSONRecordSource = std::function<std::span<const JSONSlot>(std::string_view key)>;

/// Reads a JSON array, or a JSON object, whose elements are records, followed by nothing but white space.
/// Strict: UTF-8 and at most 32 levels deep; a required member that is missing and a value of another type
/// are errors; members without a slot are skipped; of a member given twice the last counts. Records of an
/// object come in their order, also where two have the same key. After an error the records read so far must
/// be discarded. Callers use the functions below, which know the type of the record.
ErrorRef readJSONArray(DataView text, const JSONRecordSource& nextRecord);
ErrorRef readJSONObject(DataView text, const JSONRecordSource& nextRecord);

/// The slots of one type of record.
template<class Record>
class JSONSlots {
public:
    /// Points the slots into `record`, or nowhere when it is null.
    std::span<const JSONSlot> of(Record* record) {
        for (std::size_t i = 0; i < slots_.size(); ++i)
            std::visit(
                [&](auto member) { slots_[i].place = record ? &(record->*member) : nullptrTo(member); },
                members_[i].member);
        return slots_;
    }

private:
    template<class Value>
    static Value* nullptrTo(Value Record::*) {
        return nullptr;
    }
    static constexpr auto members_ = Record::jsonMembers();

    std::array<JSONSlot, members_.size()> slots_ = [] {
        std::array<JSONSlot, members_.size()> keyed;
        for (std::size_t i = 0; i < keyed.size(); ++i)
            keyed[i].key = members_[i].key;
        return keyed;
    }();
};

/// The records of a JSON array.
template<class Record>
Result<std::vector<Record>> decodeJSONArray(DataView text) {
    std::vector<Record> records;
    JSONSlots<Record> recordSlots;
    const auto append = [&](std::string_view) { return recordSlots.of(&records.emplace_back()); };
    if (ErrorRef error = readJSONArray(text, append))
        return error;
    return records;
}

/// The records of a JSON object with their keys, in their order.
template<class Record>
Result<std::vector<std::pair<std::string, Record>>> decodeJSONObject(DataView text) {
    std::vector<std::pair<std::string, Record>> records;
    JSONSlots<Record> recordSlots;
    const auto append = [&](std::string_view key) {
        return recordSlots.of(&records.emplace_back(std::string(key), Record()).second);
    };
    if (ErrorRef error = readJSONObject(text, append))
        return error;
    return records;
}

/// Checks a JSON object of such records without keeping them; `visitKey` is called with the key of each.
template<class Record, class VisitKey>
ErrorRef checkJSONObject(DataView text, VisitKey visitKey) {
    JSONSlots<Record> recordSlots;
    return readJSONObject(text, [&](std::string_view key) {
        visitKey(key);
        return recordSlots.of(nullptr);
    });
}

/// Writes a record as a JSON object, its members in their order; an absent optional text is left out.
template<class Record>
void writeJSONRecord(JSONWriter& writer, const Record& record) {
    writer.beginObject();
    for (const JSONMember<Record>& member : Record::jsonMembers())
        std::visit([&](auto value) { writer.member(member.key, record.*value); }, member.member);
    writer.endObject();
}

} // namespace sela
