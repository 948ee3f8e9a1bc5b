#include "platform/media/MediaMessages.h"

#include <functional>
#include <gtest/gtest.h>

namespace sela {
namespace {

MediaRequest frameRequest() {
    MediaRequest request;
    request.number = 7;
    request.operation = MediaOperation::copyFrame;
    request.maximumSide = 300;
    request.asset = 9;
    request.time = {8792, 600};
    request.toleranceBefore = {60, 600};
    request.toleranceAfter = kCMTimePositiveInfinity;
    request.appliesTrackTransform = true;
    return request;
}

MediaResponse frameResponse() {
    MediaResponse response;
    response.number = 7;
    response.status = MediaStatus::done;
    response.width = 300;
    response.height = 169;
    response.time = {8800, 600};
    response.framesDecoded = 12;
    return response;
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
    const std::vector<std::function<void(MediaResponse&)>> responses = {
        [](MediaResponse& response) { response.number = 8; },
        [](MediaResponse& response) { response.status = static_cast<MediaStatus>(3); },
        [](MediaResponse& response) { response.status = MediaStatus::unreadable; }, // yet it has a size
        [](MediaResponse& response) { response.width = 301; },
        [](MediaResponse& response) { response.height = 0xFFFFFFFF; },
        [](MediaResponse& response) { response.height = 0; },
        [](MediaResponse& response) { response.time.timescale = 0; },
        [](MediaResponse& response) { response.time.timescale = -600; },
        [](MediaResponse& response) { response.time.positiveInfinity = true; },
    };
    for (std::size_t i = 0; i < responses.size(); ++i) {
        MediaResponse response = frameResponse();
        responses[i](response);
        EXPECT_FALSE(decodeResponse(encode(response), frameRequest())) << i;
    }
    const std::vector<std::function<void(MediaRequest&)>> requests = {
        [](MediaRequest& request) { request.operation = static_cast<MediaOperation>(3); },
        [](MediaRequest& request) {
            request.operation = MediaOperation::readDuration;
        }, // yet it wants pixels
        [](MediaRequest& request) { request.maximumSide = 0; },
        [](MediaRequest& request) { request.maximumSide = maximumPictureSide + 1; },
        [](MediaRequest& request) { request.time = kCMTimePositiveInfinity; },
        [](MediaRequest& request) { request.toleranceBefore.timescale = 0; },
    };
    for (std::size_t i = 0; i < requests.size(); ++i) {
        MediaRequest request = frameRequest();
        requests[i](request);
        EXPECT_FALSE(decodeRequest(encode(request))) << i;
    }
}

} // namespace
} // namespace sela
