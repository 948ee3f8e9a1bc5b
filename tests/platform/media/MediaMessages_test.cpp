#include "platform/media/MediaMessages.h"

#include <functional>
#include <gtest/gtest.h>

namespace sela {
namespace {

MediaRequest frameRequest() {
    return {.number = 7,
            .operation = MediaOperation::copyFrame,
            .maximumSide = 300,
            .shorterSide = 200,
            .asset = 9,
            .time = {8792, 600},
            .toleranceBefore = {60, 600},
            .toleranceAfter = kCMTimePositiveInfinity,
            .appliesTrackTransform = true};
}

MediaResponse frameResponse() {
    return {7, MediaStatus::done, 300, 169, {8800, 600}, 12};
}

TEST(MediaMessages, ArriveAsTheyWereSent) {
    EXPECT_EQ(decodeRequest(encode(frameRequest())), frameRequest());
    EXPECT_EQ(decodeResponse(encode(frameResponse()), frameRequest()), frameResponse());
}

TEST(MediaMessages, OfAnotherLengthAreRefused) {
    const Data request = encode(frameRequest());
    const Data response = encode(frameResponse());
    for (std::size_t size = 0; size < request.size(); ++size)
        EXPECT_FALSE(decodeRequest(DataView(request).first(size))) << size;
    for (std::size_t size = 0; size < response.size(); ++size)
        EXPECT_FALSE(decodeResponse(DataView(response).first(size), frameRequest())) << size;
    Data longer = response;
    longer.push_back({});
    EXPECT_FALSE(decodeResponse(longer, frameRequest()));
}

TEST(MediaMessages, ThatBreakTheRulesAreRefused) {
    const std::function<void(MediaResponse&)> responses[] = {
        [](auto& response) { response.number = 8; },
        [](auto& response) { response.status = static_cast<MediaStatus>(3); },
        [](auto& response) { response.status = MediaStatus::unreadable; }, // yet it has a size
        [](auto& response) { response.width = 301; },
        [](auto& response) { response.height = 0xFFFFFFFF; },
        [](auto& response) { response.height = 0; },
        [](auto& response) { response.fileSize = 1; },
        [](auto& response) { response.time.timescale = 0; },
        [](auto& response) { response.time.timescale = -600; },
        [](auto& response) { response.time.positiveInfinity = true; },
    };
    const std::function<void(MediaRequest&)> requests[] = {
        [](auto& request) { request.operation = static_cast<MediaOperation>(4); },
        [](auto& request) { request.operation = MediaOperation::readDuration; }, // yet it wants pixels
        [](auto& request) { request.operation = MediaOperation::encodePicture; },
        [](auto& request) { request.quality = 90; }, // of a file that is not asked for
        [](auto& request) { request.maximumSide = 0; },
        [](auto& request) { request.maximumSide = maximumPictureSide + 1; },
        [](auto& request) { request.shorterSide = request.maximumSide + 1; },
        [](auto& request) { request.time = kCMTimePositiveInfinity; },
        [](auto& request) { request.toleranceBefore.timescale = 0; },
    };
    for (const auto& spoil : responses) {
        MediaResponse response = frameResponse();
        spoil(response);
        EXPECT_FALSE(decodeResponse(encode(response), frameRequest())) << &spoil - responses;
    }
    for (const auto& spoil : requests) {
        MediaRequest request = frameRequest();
        spoil(request);
        EXPECT_FALSE(decodeRequest(encode(request))) << &spoil - requests;
    }
}

} // namespace
} // namespace sela
