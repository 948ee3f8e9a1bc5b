#include "host/FontPreparation.h"

#include <QFontDatabase>
#include <QThreadPool>

#include <fontconfig/fontconfig.h>
#include <system_error>

namespace sela {

FontPreparation::FontPreparation() {
    try {
        configuration_ = std::thread([] { FcInit(); });
    } catch (const std::system_error&) {
    }
}

FontPreparation::~FontPreparation() {
    if (listed_.valid())
        wait();
    if (configuration_.joinable())
        configuration_.join();
}

void FontPreparation::beginList() {
    listed_ = list_.get_future();
    QThreadPool::globalInstance()->start([this] {
        if (configuration_.joinable())
            configuration_.join();
        QFontDatabase::families();
        list_.set_value();
    });
}

void FontPreparation::wait() {
    listed_.wait();
}

} // namespace sela
