#include "ui/CommonUIViewController.h"

#include "platform/uikit/UINavigationController.h"

#include <memory>

namespace sela {

CommonUIViewController::CommonUIViewController(const std::optional<std::string>& nibName)
    : UIViewController(nibName) {}

CommonUIViewController::CommonUIViewController(const NSCoder& coder) : UIViewController(coder) {}

void CommonUIViewController::dismiss(bool animated, Completion completion) {
    const auto self = std::static_pointer_cast<CommonUIViewController>(shared_from_this());
    UIViewController::dismiss(animated, [self, completion = std::move(completion)] {
        if (completion)
            completion();
        if (self->ifDismissed_)
            return;
        self->ifDismissed_ = true;
        self->report(std::nullopt);
    });
}

void CommonUIViewController::onBackButtonTouched(UIBarButtonItem&) {
    UINavigationController* navigation = navigationController();
    if (!navigation)
        return;
    const auto self = shared_from_this();
    navigation->popViewController(true);
    report(std::nullopt);
}

void CommonUIViewController::report(std::optional<bool> result) {
    if (const Callback callback = std::exchange(callback_, nullptr))
        callback(result);
}

} // namespace sela
