#include "share/SelaShareExtensionEntryVc.h"

#include "platform/snapkit/ConstraintViewDSL.h"
#include "platform/uikit/UINavigationController.h"
#include "share/SelaShareExtensionVc.h"
#include "ui/UIScale.h"

#include <memory>

namespace sela {

void SelaShareExtensionEntryVc::viewDidLoad() {
    UIViewController::viewDidLoad();
    const double scale = getUIScale(*this);
    view().setBackgroundColor(UIColor::black().withAlpha(0.5));
    addCard(scale);
    addNavigation();
}

void SelaShareExtensionEntryVc::addCard(double scale) {
    view().addSubview(container_);
    container_.snp().makeConstraints([&](ConstraintMaker& make) {
        make.width().equalTo(cardSize.width * scale);
        make.height().equalTo(cardSize.height * scale);
        make.center().equalToSuperview();
    });
    container_.layer().setCornerRadius(cornerRadius * scale);
    container_.setClipsToBounds(true);
}

void SelaShareExtensionEntryVc::addNavigation() {
    const auto navigation =
        std::make_shared<UINavigationController>(std::make_shared<SelaShareExtensionVc>());
    navigation->setNavigationBarHidden(true, false);
    addChild(navigation);
    container_.addSubview(navigation->view());
    navigation->view().snp().makeConstraints(
        [&](ConstraintMaker& make) { make.size().center().equalToSuperview(); });
    navigation->didMove(this);
}

} // namespace sela
