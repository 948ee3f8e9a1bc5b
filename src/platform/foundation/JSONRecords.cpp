#include "platform/foundation/JSONRecords.h"

#include <algorithm>
#include <boost/json/basic_parser_impl.hpp>
#include <cstdint>
#include <utility>

namespace sela {

namespace {

using boost::json::error_code;
using boost::json::string_view;

enum class Container { array, object };

/// Takes the parser's events and fills records. Levels: 1 is the collection, 2 a record, 3 a list of texts;
/// deeper values, and those of a member without a slot, are skipped.
class RecordHandler {
public:
    static constexpr std::size_t max_object_size = std::size_t(-1);
    static constexpr std::size_t max_array_size = std::size_t(-1);
    static constexpr std::size_t max_key_size = std::size_t(-1);
    static constexpr std::size_t max_string_size = std::size_t(-1);

    RecordHandler(Container container, const JSONRecordSource& nextRecord)
        : container_(container), nextRecord_(nextRecord) {}

    const std::string& problem() const { return problem_; }
    std::size_t recordCount() const { return recordCount_; }

    bool on_document_begin(error_code&) { return true; }
    bool on_document_end(error_code&) { return true; }

    bool on_object_begin(error_code& ec) { return beginContainer(Container::object, ec); }
    bool on_object_end(std::size_t, error_code& ec) { return endContainer(ec); }
    bool on_array_begin(error_code& ec) { return beginContainer(Container::array, ec); }
    bool on_array_end(std::size_t, error_code& ec) { return endContainer(ec); }

    bool on_key_part(string_view part, std::size_t, error_code&) {
        text_.append(part.data(), part.size());
        return true;
    }
    bool on_key(string_view part, std::size_t, error_code&) {
        const std::string_view key = whole(part);
        if (skippedFrom_ == 0 && level_ == 1)
            recordKey_ = key;
        else if (skippedFrom_ == 0)
            selectSlot(key);
        text_.clear();
        return true;
    }
    bool on_string_part(string_view part, std::size_t, error_code&) {
        text_.append(part.data(), part.size());
        return true;
    }
    bool on_string(string_view part, std::size_t, error_code& ec) {
        if (!isPassedOver() && !store(whole(part)))
            return wrongType("a text", ec);
        text_.clear();
        return true;
    }
    bool on_number_part(string_view, error_code&) { return true; }
    bool on_int64(std::int64_t, string_view, error_code& ec) {
        return isPassedOver() || wrongType("a number", ec);
    }
    bool on_uint64(std::uint64_t, string_view, error_code& ec) {
        return isPassedOver() || wrongType("a number", ec);
    }
    bool on_double(double, string_view, error_code& ec) {
        return isPassedOver() || wrongType("a number", ec);
    }
    bool on_bool(bool value, error_code& ec) {
        if (isPassedOver())
            return true;
        bool* const* const place = level_ == 2 ? std::get_if<bool*>(&slot_->place) : nullptr;
        if (!place)
            return wrongType("a Boolean", ec);
        if (*place)
            **place = value;
        return true;
    }
    bool on_null(error_code& ec) {
        if (isPassedOver())
            return true;
        if (level_ != 2 || !isOptional(*slot_))
            return wrongType("null", ec);
        if (const auto* const text = std::get_if<OptionalText>(&slot_->place); text && *text)
            (*text)->reset();
        if (const auto* const secret = std::get_if<OptionalSecret>(&slot_->place); secret && *secret)
            (*secret)->reset();
        return true;
    }
    bool on_comment_part(string_view, error_code&) { return true; }
    bool on_comment(string_view, error_code&) { return true; }

private:
    using OptionalText = std::optional<std::string>*;
    using OptionalSecret = std::optional<Secret>*;
    using Texts = std::vector<std::string>*;

    static bool isOptional(const JSONSlot& slot) {
        return std::holds_alternative<OptionalText>(slot.place) ||
               std::holds_alternative<OptionalSecret>(slot.place);
    }

    /// The key or text that ends with this part, which usually is all of it.
    std::string_view whole(string_view part) {
        if (text_.empty())
            return part;
        return text_.append(part.data(), part.size());
    }

    /// Whether the value at hand belongs to a member without a slot.
    bool isPassedOver() const { return skippedFrom_ != 0 || (level_ == 2 && !slot_); }

    /// Stores a text in its slot; false where none is expected.
    bool store(std::string_view text) {
        if (level_ < 2)
            return false;
        if (level_ == 3) {
            if (const Texts texts = std::get<Texts>(slot_->place))
                texts->emplace_back(text);
        } else if (const auto* const required = std::get_if<std::string*>(&slot_->place)) {
            if (*required)
                **required = text;
        } else if (const auto* const optional = std::get_if<OptionalText>(&slot_->place)) {
            if (*optional)
                **optional = text;
        } else if (const auto* const secret = std::get_if<OptionalSecret>(&slot_->place)) {
            if (*secret)
                **secret = Secret(text);
        } else {
            return false;
        }
        return true;
    }

    void selectSlot(std::string_view key) {
        const auto found = std::ranges::find(slots_, key, &JSONSlot::key);
        slot_ = found == slots_.end() ? nullptr : &*found;
        if (slot_)
            seen_[static_cast<std::size_t>(found - slots_.begin())] = true;
    }

    bool beginContainer(Container kind, error_code& ec) {
        if (isPassedOver()) {
            ++level_;
            if (skippedFrom_ == 0)
                skippedFrom_ = level_;
            return true;
        }
        switch (level_) {
        case 0:
            if (kind != container_)
                return fail(container_ == Container::array ? "expected an array" : "expected an object", ec);
            break;
        case 1:
            if (kind != Container::object)
                return fail("record " + std::to_string(recordCount_) + " is no object", ec);
            ++recordCount_;
            slots_ = nextRecord_(recordKey_);
            slot_ = nullptr;
            seen_.assign(slots_.size(), false);
            break;
        case 2:
            if (kind != Container::array || !std::holds_alternative<Texts>(slot_->place))
                return wrongType(kind == Container::array ? "an array" : "an object", ec);
            if (const Texts texts = std::get<Texts>(slot_->place))
                texts->clear();
            break;
        default:
            return wrongType("nested values", ec);
        }
        ++level_;
        return true;
    }

    bool endContainer(error_code& ec) {
        if (skippedFrom_ == level_)
            skippedFrom_ = 0;
        --level_;
        if (skippedFrom_ == 0 && level_ == 1)
            return checkRequired(ec);
        return true;
    }

    bool checkRequired(error_code& ec) {
        for (std::size_t i = 0; i < slots_.size(); ++i)
            if (!seen_[i] && !isOptional(slots_[i]))
                return fail("\"" + std::string(slots_[i].key) + "\" is missing in record " +
                                std::to_string(recordCount_ - 1),
                            ec);
        return true;
    }

    bool wrongType(std::string_view found, error_code& ec) {
        if (level_ < 2)
            return fail(std::string(found) + " where a " + (level_ == 0 ? "collection" : "record") +
                            " is expected",
                        ec);
        return fail("\"" + std::string(slot_->key) + "\" of record " + std::to_string(recordCount_ - 1) +
                        " is " + std::string(found),
                    ec);
    }

    bool fail(std::string problem, error_code& ec) {
        problem_ = std::move(problem);
        ec = boost::json::error::syntax;
        return false;
    }

    Container container_;
    const JSONRecordSource& nextRecord_;

    int level_ = 0;
    int skippedFrom_ = 0; ///< skipping ends with this level; 0: nothing is skipped
    std::string text_;    ///< parts of a key or text that the parser delivers in pieces
    std::string recordKey_;
    std::span<const JSONSlot> slots_;
    const JSONSlot* slot_ = nullptr; ///< that of the member at hand
    std::vector<bool> seen_;         ///< for each slot
    std::size_t recordCount_ = 0;
    std::string problem_;
};

ErrorRef readRecords(Container container, DataView text, const JSONRecordSource& nextRecord) {
    boost::json::basic_parser<RecordHandler> parser(boost::json::parse_options(), container, nextRecord);
    const std::string_view characters = asText(text);
    error_code error;
    const std::size_t consumed = parser.write_some(false, characters.data(), characters.size(), error);
    if (!error && consumed < characters.size())
        error = boost::json::error::extra_data;
    if (!error)
        return nullptr;
    const std::string& problem = parser.handler().problem();
    if (!problem.empty())
        return std::make_shared<NSError>(NSCocoaErrorDomain, NSCoderInvalidValueError, "JSON: " + problem);
    return std::make_shared<NSError>(NSCocoaErrorDomain, NSCoderReadCorruptError,
                                     "JSON: " + error.message() + " at byte " + std::to_string(consumed));
}

} // namespace

ErrorRef readJSONArray(DataView text, const JSONRecordSource& nextRecord) {
    return readRecords(Container::array, text, nextRecord);
}

ErrorRef readJSONObject(DataView text, const JSONRecordSource& nextRecord) {
    return readRecords(Container::object, text, nextRecord);
}

} // namespace sela
