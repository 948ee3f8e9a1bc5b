#include "host/OffscreenEnvironment.h"
#include "host/TreeWriter.h"
#include "platform/uikit/UIImageView.h"
#include "platform/uikit/UILabel.h"

#include <gtest/gtest.h>

#include <regex>

namespace sela {

namespace {

/// A screen of nothing yet, in a window.
class TreeWriterTest : public testing::Test {
protected:
    TreeWriterTest() { window_.setRootViewController(controller_); }

    OffscreenEnvironment environment_;
    std::shared_ptr<UIViewController> controller_ = std::make_shared<UIViewController>();
    UIWindow window_{{375, 667}};
};

} // namespace

TEST_F(TreeWriterTest, DescribesWhatIsShown) {
    controller_->view().setBackgroundColor(UIColor(0, 0, 0, 0.5));
    UIView card({27.5, 138.5, 320, 390});
    card.setName("containerView");
    card.setBackgroundColor(UIColor::named("AppCard"));
    card.layer().setCornerRadius(13);
    card.setTransform(CGAffineTransform::scale(0.5, 0.5));
    controller_->view().addSubview(card);

    UILabel label({10, 10, 100, 20});
    label.setText("Quote \" and 写");
    label.setFont(UIFont::boldSystemFont(20));
    label.setAlpha(0.25);
    label.setHidden(true);
    card.addSubview(label);

    UIImageView picture({0, 0, 40, 40});
    picture.setImage(UIImage::fromPixels({2, 3, std::vector<std::uint8_t>(24)}));
    card.addSubview(picture);

    EXPECT_EQ(TreeWriter::json(window_), std::regex_replace(R"({
        "class":"UIView","name":"","controller":"UIViewController","frame":[0,0,375,667],
        "hidden":false,"alpha":1,"subviews":[{
            "class":"UIView","name":"containerView","frame":[107.5,236,160,195],
            "hidden":false,"alpha":1,"background":"AppCard","cornerRadius":13,"subviews":[{
                "class":"UILabel","name":"","frame":[112.5,241,50,10],"hidden":true,"alpha":0.25,
                "text":"Quote \" and 写","font":{"name":"","size":20,"weight":"bold"},"truncated":true,"subviews":[]
            },{
                "class":"UIImageView","name":"","frame":[107.5,236,20,20],"hidden":false,"alpha":1,
                "image":"2x3","subviews":[]
            }]
        }]
    })",
                                                            std::regex("\n *"), ""));
}

TEST_F(TreeWriterTest, FollowsAnAnimation) {
    UIView view({0, 0, 10, 10});
    controller_->view().addSubview(view);
    UIView::animate(1, [&] {
        view.setFrame({80, 0, 10, 10});
        view.setAlpha(0);
    });
    environment_.loop.advance(0.5);
    const std::string shown = TreeWriter::json(window_);
    EXPECT_NE(shown.find(R"("frame":[40,0,10,10])"), std::string::npos) << shown;
    EXPECT_NE(shown.find(R"("alpha":0.5)"), std::string::npos) << shown;
}

TEST_F(TreeWriterTest, SaysWhenTheFileCannotBeWritten) {
    EXPECT_FALSE(TreeWriter::write(window_, "/nonexistent/tree.json"));
}

} // namespace sela
