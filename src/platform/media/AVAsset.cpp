#include "platform/media/AVAsset.h"

#include "platform/media/MediaServiceClient.h"

#include <atomic>
#include <mutex>

namespace sela {

struct AVAsset::State {
    State(URL file, std::uint32_t number) : url(std::move(file)), identifier(number) {}

    const URL url;
    const std::uint32_t identifier;
    std::once_flag asked;
    CMTime duration;
};

AVAsset AVAsset::assetWithURL(const URL& url) {
    static std::atomic<std::uint32_t> assets = 0;
    return AVAsset(std::make_shared<State>(url, ++assets));
}

const URL& AVAsset::url() const {
    return state_->url;
}

CMTime AVAsset::duration() const {
    std::call_once(state_->asked, [this] {
        MediaRequest request;
        request.operation = MediaOperation::readDuration;
        request.asset = state_->identifier;
        const auto answer = MediaServiceClient::shared().perform(state_->url.path(), request);
        state_->duration = answer ? answer.value().response.time : kCMTimeZero;
    });
    return state_->duration;
}

std::uint32_t AVAsset::identifier() const {
    return state_->identifier;
}

} // namespace sela
