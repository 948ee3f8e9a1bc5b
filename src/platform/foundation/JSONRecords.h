#pragma once

#include "platform/foundation/Data.h"
#include "platform/foundation/Error.h"
#include "platform/foundation/JSONWriter.h"

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace sela {

/// One member of a flat JSON record and where its value lives in the C++ record.
struct JSONField {
    enum class Kind {
        text,         ///< std::string, required
        optionalText, ///< std::optional<std::string>; absent when the member is missing or null
        boolean,      ///< bool, required
        texts,        ///< std::vector<std::string>, required
    };

    std::string_view key;
    Kind kind;
    void* (*locate)(void* record);
};

namespace detail {

template<class Class, class Member>
Class classOf(Member Class::*);
template<class Class, class Member>
Member memberOf(Member Class::*);

template<class Member>
constexpr JSONField::Kind kindOf() {
    if constexpr (std::is_same_v<Member, std::string>)
        return JSONField::Kind::text;
    else if constexpr (std::is_same_v<Member, std::optional<std::string>>)
        return JSONField::Kind::optionalText;
    else if constexpr (std::is_same_v<Member, bool>)
        return JSONField::Kind::boolean;
    else {
        static_assert(std::is_same_v<Member, std::vector<std::string>>);
        return JSONField::Kind::texts;
    }
}

} // namespace detail

/// Describes the JSON member `key` that is kept in the data member `member`. A record type lists its fields
/// once, in the order of writing, in a static `jsonFields()`, which serves reading and writing alike.
template<auto member>
constexpr JSONField jsonField(std::string_view key) {
    using Record = decltype(detail::classOf(member));
    using Member = decltype(detail::memberOf(member));
    return {key, detail::kindOf<Member>(),
            [](void* record) -> void* { return &(static_cast<Record*>(record)->*member); }};
}

/// Called at the start of each record with its key (empty inside an array); returns the record to fill,
/// freshly made, which stays where it is until the next call, or null for one that is only to be checked.
using JSONRecordSource = std::function<void*(std::string_view key)>;

/// Reads a JSON array, or a JSON object, whose elements are records with these fields, and nothing behind it
/// but white space. Strict: UTF-8 and at most 32 levels deep; a required member that is missing and a value
/// of another type are errors; members without a field are skipped; of a member given twice the last counts.
/// Records of an object come in their order, also where two have the same key. On an error the records made
/// so far are to be thrown away.
ErrorRef readJSONArray(DataView text, std::span<const JSONField> fields, const JSONRecordSource& nextRecord);
ErrorRef readJSONObject(DataView text, std::span<const JSONField> fields, const JSONRecordSource& nextRecord);

/// Writes a record as a JSON object, its members in the order of the fields; an absent optional text is left
/// out. `record` is only read.
void writeJSONRecord(JSONWriter& writer, std::span<const JSONField> fields, const void* record);

/// The records of a JSON array; the error of `readJSONArray`.
template<class Record>
Result<std::vector<Record>> decodeJSONArray(DataView text) {
    std::vector<Record> records;
    const auto append = [&](std::string_view) -> void* { return &records.emplace_back(); };
    if (ErrorRef error = readJSONArray(text, Record::jsonFields(), append))
        return error;
    return records;
}

/// The records of a JSON object with their keys, in their order; the error of `readJSONObject`.
template<class Record>
Result<std::vector<std::pair<std::string, Record>>> decodeJSONObject(DataView text) {
    std::vector<std::pair<std::string, Record>> records;
    const auto append = [&](std::string_view key) -> void* {
        return &records.emplace_back(std::string(key), Record()).second;
    };
    if (ErrorRef error = readJSONObject(text, Record::jsonFields(), append))
        return error;
    return records;
}

} // namespace sela
