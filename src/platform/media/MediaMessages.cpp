#include "platform/media/MediaMessages.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace sela {

namespace {

class Writer {
public:
    template<class Number>
    requires std::is_arithmetic_v<Number>
    void put(Number number) {
        const auto* bytes = reinterpret_cast<const std::byte*>(&number);
        data_.insert(data_.end(), bytes, bytes + sizeof number);
    }

    void put(const CMTime& time) {
        put(time.value);
        put(time.timescale);
        put(std::uint32_t{time.positiveInfinity});
    }

    Data take() { return std::move(data_); }

private:
    Data data_;
};

/// Reads numbers in order; a value that is missing or not allowed makes the whole message bad.
class Reader {
public:
    explicit Reader(DataView bytes) : bytes_(bytes) {}

    template<class Number>
    requires std::is_arithmetic_v<Number>
    void get(Number& number) {
        if (bytes_.size() < sizeof number) {
            good_ = false;
            return;
        }
        std::memcpy(&number, bytes_.data(), sizeof number);
        bytes_ = bytes_.subspan(sizeof number);
    }

    void get(bool& flag) {
        std::uint32_t number = 0;
        get(number);
        require(number <= 1);
        flag = number == 1;
    }

    template<class Enumeration>
    requires std::is_enum_v<Enumeration>
    void get(Enumeration& value, Enumeration last) {
        std::uint32_t number = 0;
        get(number);
        require(number <= static_cast<std::uint32_t>(last));
        value = good_ ? static_cast<Enumeration>(number) : Enumeration{};
    }

    void get(CMTime& time) {
        get(time.value);
        get(time.timescale);
        get(time.positiveInfinity);
        require(time.timescale > 0);
    }

    void require(bool condition) { good_ = good_ && condition; }

    bool isWholeMessage() const { return good_ && bytes_.empty(); }

private:
    DataView bytes_;
    bool good_ = true;
};

bool givesPixels(MediaOperation operation) {
    return operation == MediaOperation::decodePicture || operation == MediaOperation::copyFrame;
}

} // namespace

std::uint64_t MediaRequest::memorySize() const {
    if (operation == MediaOperation::encodePicture)
        return largestEncodedPicture;
    return std::uint64_t{4} * maximumSide * maximumSide;
}

void MediaRequest::setBounds(PictureBounds bounds) {
    maximumSide = static_cast<std::uint32_t>(std::clamp(bounds.longerSide, 1, maximumPictureSide));
    shorterSide =
        static_cast<std::uint32_t>(std::clamp(bounds.shorterSide, 0, static_cast<int>(maximumSide)));
}

Data encode(const MediaRequest& request) {
    Writer writer;
    writer.put(request.number);
    writer.put(static_cast<std::uint32_t>(request.operation));
    writer.put(request.maximumSide);
    writer.put(request.shorterSide);
    writer.put(request.asset);
    writer.put(request.time);
    writer.put(request.toleranceBefore);
    writer.put(request.toleranceAfter);
    writer.put(std::uint32_t{request.appliesTrackTransform});
    writer.put(std::uint32_t{request.wholeOnly});
    writer.put(request.quality);
    return writer.take();
}

Data encode(const MediaResponse& response) {
    Writer writer;
    writer.put(response.number);
    writer.put(static_cast<std::uint32_t>(response.status));
    writer.put(response.width);
    writer.put(response.height);
    writer.put(response.time);
    writer.put(response.framesDecoded);
    writer.put(response.fileSize);
    return writer.take();
}

std::optional<MediaRequest> decodeRequest(DataView bytes) {
    Reader reader(bytes);
    MediaRequest request;
    reader.get(request.number);
    reader.get(request.operation, MediaOperation::encodePicture);
    reader.get(request.maximumSide);
    reader.get(request.shorterSide);
    reader.get(request.asset);
    reader.get(request.time);
    reader.get(request.toleranceBefore);
    reader.get(request.toleranceAfter);
    reader.get(request.appliesTrackTransform);
    reader.get(request.wholeOnly);
    reader.get(request.quality);

    reader.require(request.operation == MediaOperation::encodePicture ||
                   givesPixels(request.operation) == (request.maximumSide > 0));
    reader.require((request.operation == MediaOperation::encodePicture) == (request.quality > 0));
    reader.require(request.quality <= 100);
    reader.require(request.maximumSide <= maximumPictureSide && request.shorterSide <= request.maximumSide);
    reader.require(!request.time.positiveInfinity);
    if (!reader.isWholeMessage())
        return std::nullopt;
    return request;
}

std::optional<MediaResponse> decodeResponse(DataView bytes, const MediaRequest& request) {
    Reader reader(bytes);
    MediaResponse response;
    reader.get(response.number);
    reader.get(response.status, MediaStatus::noSuchFrame);
    reader.get(response.width);
    reader.get(response.height);
    reader.get(response.time);
    reader.get(response.framesDecoded);
    reader.get(response.fileSize);

    const bool isDone = response.status == MediaStatus::done;
    const bool hasPixels = isDone && givesPixels(request.operation);
    const bool hasFile = isDone && request.operation == MediaOperation::encodePicture;
    reader.require(response.number == request.number);
    reader.require(hasPixels == (response.width > 0) && hasPixels == (response.height > 0));
    reader.require(response.width <= request.maximumSide && response.height <= request.maximumSide);
    reader.require(hasFile == (response.fileSize > 0) && response.fileSize <= largestEncodedPicture);
    reader.require(!response.time.positiveInfinity);
    if (!reader.isWholeMessage())
        return std::nullopt;
    return response;
}

} // namespace sela
