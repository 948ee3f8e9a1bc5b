#include "platform/foundation/JSONRecords.h"

#include <boost/json/basic_parser_impl.hpp>
#include <cstdint>
#include <utility>

namespace sela {

namespace {

using boost::json::error_code;
using boost::json::string_view;

enum class Container { array, object };

/// Takes the parser's events and fills records. Levels: 1 is the collection, 2 a record, 3 a list of texts;
/// what lies deeper, or belongs to a member without a field, is passed over.
class RecordHandler {
public:
    static constexpr std::size_t max_object_size = std::size_t(-1);
    static constexpr std::size_t max_array_size = std::size_t(-1);
    static constexpr std::size_t max_key_size = std::size_t(-1);
    static constexpr std::size_t max_string_size = std::size_t(-1);

    RecordHandler(Container container, std::span<const JSONField> fields, const JSONRecordSource& nextRecord)
        : container_(container), fields_(fields), nextRecord_(nextRecord), seen_(fields.size()) {}

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
            selectField(key);
        text_.clear();
        return true;
    }
    bool on_string_part(string_view part, std::size_t, error_code&) {
        text_.append(part.data(), part.size());
        return true;
    }
    bool on_string(string_view part, std::size_t, error_code& ec) {
        if (!isPassedOver() && !takesText())
            return wrongType("a text", ec);
        if (!isPassedOver() && record_)
            store(std::string(whole(part)));
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
        if (level_ != 2 || field_->kind != JSONField::Kind::boolean)
            return wrongType("a Boolean", ec);
        if (record_)
            *static_cast<bool*>(place_) = value;
        return true;
    }
    bool on_null(error_code& ec) {
        if (isPassedOver())
            return true;
        if (level_ != 2 || field_->kind != JSONField::Kind::optionalText)
            return wrongType("null", ec);
        if (record_)
            static_cast<std::optional<std::string>*>(place_)->reset();
        return true;
    }
    bool on_comment_part(string_view, error_code&) { return true; }
    bool on_comment(string_view, error_code&) { return true; }

private:
    /// The key or text that ends with this part, which mostly is all of it.
    std::string_view whole(string_view part) {
        if (text_.empty())
            return part;
        return text_.append(part.data(), part.size());
    }

    /// Whether the value at hand belongs to a member without a field.
    bool isPassedOver() const { return skippedFrom_ != 0 || (level_ == 2 && !field_); }

    bool takesText() const {
        return level_ == 3 || (level_ == 2 && (field_->kind == JSONField::Kind::text ||
                                               field_->kind == JSONField::Kind::optionalText));
    }

    /// Puts a text where it belongs.
    void store(std::string text) {
        if (level_ == 3)
            static_cast<std::vector<std::string>*>(place_)->push_back(std::move(text));
        else if (field_->kind == JSONField::Kind::text)
            *static_cast<std::string*>(place_) = std::move(text);
        else
            *static_cast<std::optional<std::string>*>(place_) = std::move(text);
    }

    void selectField(std::string_view key) {
        field_ = nullptr;
        for (std::size_t i = 0; i < fields_.size(); ++i) {
            if (fields_[i].key != key)
                continue;
            field_ = &fields_[i];
            place_ = record_ ? field_->locate(record_) : nullptr;
            seen_[i] = true;
        }
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
            record_ = nextRecord_(recordKey_);
            field_ = nullptr;
            seen_.assign(fields_.size(), false);
            break;
        case 2:
            if (kind != Container::array || field_->kind != JSONField::Kind::texts)
                return wrongType(kind == Container::array ? "an array" : "an object", ec);
            if (record_)
                static_cast<std::vector<std::string>*>(place_)->clear();
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
        for (std::size_t i = 0; i < fields_.size(); ++i)
            if (!seen_[i] && fields_[i].kind != JSONField::Kind::optionalText)
                return fail("\"" + std::string(fields_[i].key) + "\" is missing in record " +
                                std::to_string(recordCount_ - 1),
                            ec);
        return true;
    }

    bool wrongType(std::string_view found, error_code& ec) {
        if (level_ < 2)
            return fail(std::string(found) + " where a " + (level_ == 0 ? "collection" : "record") +
                            " is expected",
                        ec);
        return fail("\"" + std::string(field_->key) + "\" of record " + std::to_string(recordCount_ - 1) +
                        " is " + std::string(found),
                    ec);
    }

    bool fail(std::string problem, error_code& ec) {
        problem_ = std::move(problem);
        ec = boost::json::error::syntax;
        return false;
    }

    Container container_;
    std::span<const JSONField> fields_;
    const JSONRecordSource& nextRecord_;

    int level_ = 0;
    int skippedFrom_ = 0; ///< the level whose end ends the skipping; 0: nothing is skipped
    std::string text_;    ///< parts of a key or text that the parser hands over piecewise
    std::string recordKey_;
    void* record_ = nullptr; ///< null while a record is only checked
    const JSONField* field_ = nullptr;
    void* place_ = nullptr;
    std::vector<bool> seen_;
    std::size_t recordCount_ = 0;
    std::string problem_;
};

ErrorRef readRecords(Container container, DataView text, std::span<const JSONField> fields,
                     const JSONRecordSource& nextRecord) {
    boost::json::basic_parser<RecordHandler> parser(boost::json::parse_options(), container, fields,
                                                    nextRecord);
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

ErrorRef readJSONArray(DataView text, std::span<const JSONField> fields, const JSONRecordSource& nextRecord) {
    return readRecords(Container::array, text, fields, nextRecord);
}

ErrorRef readJSONObject(DataView text, std::span<const JSONField> fields,
                        const JSONRecordSource& nextRecord) {
    return readRecords(Container::object, text, fields, nextRecord);
}

void writeJSONRecord(JSONWriter& writer, std::span<const JSONField> fields, const void* record) {
    writer.beginObject();
    for (const JSONField& field : fields) {
        // The fields lead to places that may be written; here they are only read.
        const void* const place = field.locate(const_cast<void*>(record));
        switch (field.kind) {
        case JSONField::Kind::text:
            writer.key(field.key).string(*static_cast<const std::string*>(place));
            break;
        case JSONField::Kind::optionalText:
            if (const auto& text = *static_cast<const std::optional<std::string>*>(place))
                writer.key(field.key).string(*text);
            break;
        case JSONField::Kind::boolean:
            writer.key(field.key).boolean(*static_cast<const bool*>(place));
            break;
        case JSONField::Kind::texts:
            writer.key(field.key).strings(*static_cast<const std::vector<std::string>*>(place));
            break;
        }
    }
    writer.endObject();
}

} // namespace sela
