#include "host/OffscreenEnvironment.h"
#include "host/TreeWriter.h"
#include "platform/uikit/UIImageView.h"
#include "platform/uikit/UILabel.h"

#include <gtest/gtest.h>

#include <regex>

namespace sela {

TEST(TreeWriter, DescribesWhatIsShownAtTheMoment) {
    OffscreenEnvironment environment;
    const auto controller = std::make_shared<UIViewController>();
    UIWindow window({375, 667});
    window.setRootViewController(controller);
    controller->view().setBackgroundColor(UIColor(0, 0, 0, 0.5));
    UIView card({27.5, 138.5, 320, 390});
    card.setName("containerView");
    card.setBackgroundColor(UIColor::named("AppCard"));
    card.layer().setCornerRadius(13);
    card.setTransform(CGAffineTransform::scale(0.5, 0.5));
    controller->view().addSubview(card);

    UILabel label({10, 10, 100, 20});
    label.setText("Quote \" and 写");
    label.setFont(UIFont::boldSystemFont(20));
    label.setAlpha(0.25);
    label.setHidden(true);
    card.addSubview(label);

    UIImageView picture({0, 0, 0, 40});
    picture.setImage(UIImage::fromPixels({2, 3, std::vector<std::uint8_t>(24)}));
    card.addSubview(picture);
    UIView::animate(1, [&] {
        picture.setFrame({0, 0, 80, 40});
        picture.setAlpha(0);
    });
    environment.loop.advance(0.5);

    EXPECT_EQ(TreeWriter::json(window), std::regex_replace(R"({
        "class":"UIView","name":"","controller":"UIViewController","frame":[0,0,375,667],
        "hidden":false,"alpha":1,"subviews":[{
            "class":"UIView","name":"containerView","frame":[107.5,236,160,195],
            "hidden":false,"alpha":1,"background":"AppCard","cornerRadius":13,"subviews":[{
                "class":"UILabel","name":"","frame":[112.5,241,50,10],"hidden":true,"alpha":0.25,
                "text":"Quote \" and 写","font":{"name":"","size":20,"weight":"bold"},"truncated":true,"subviews":[]
            },{
                "class":"UIImageView","name":"","frame":[107.5,236,20,20],"hidden":false,"alpha":0.5,
                "image":"2x3","subviews":[]
            }]
        }]
    })",
                                                           std::regex("\n *"), ""));
}

} // namespace sela
