#include "host/OffscreenEnvironment.h"
#include "host/TreeWriter.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UIViewController.h"

#include <gmock/gmock.h>

namespace sela {

TEST(TreeWriter, DescribesWhatIsShownAtTheMoment) {
    OffscreenEnvironment environment;
    UIWindow window({375, 667});
    UILabel label({0, 0, 0, 40});
    label.setText("Quote \"");
    const auto controller = std::make_shared<UIViewController>();
    window.setRootViewController(controller);
    controller->view().addSubview(label);
    UIView::animate(1, [&] {
        label.setFrame({0, 0, 80, 40});
        label.setAlpha(0);
    });
    environment.loop.advance(0.5);
    EXPECT_THAT(TreeWriter::json(window),
                testing::HasSubstr(R"("frame":[0,0,40,40],"hidden":false,"alpha":0.5,"text":"Quote \"")"));
}

} // namespace sela
