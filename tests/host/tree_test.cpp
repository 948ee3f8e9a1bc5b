#include "host/OffscreenEnvironment.h"
#include "host/TreeWriter.h"
#include "platform/uikit/UIButton.h"
#include "platform/uikit/UIImageView.h"
#include "platform/uikit/UILabel.h"

#include <gtest/gtest.h>

namespace sela {

namespace {

/// The tree without white space between its parts, as the writer puts it.
std::string compact(std::string_view text) {
    std::string result;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        const std::string_view line = text.substr(start, end - start);
        if (const std::size_t first = line.find_first_not_of(' '); first != std::string_view::npos)
            result += line.substr(first);
        start = end + 1;
    }
    return result;
}

} // namespace

TEST(TreeWriter, DescribesWhatIsShown) {
    OffscreenEnvironment environment;
    UIWindow window({375, 667});
    const auto controller = std::make_shared<UIViewController>();
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

    UIImageView picture({0, 0, 40, 40});
    picture.setImage(UIImage::fromPixels({2, 3, std::vector<std::uint8_t>(24)}));
    card.addSubview(picture);

    EXPECT_EQ(TreeWriter::json(window), compact(R"({
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
    })"));
}

TEST(TreeWriter, FollowsAnAnimation) {
    OffscreenEnvironment environment;
    UIWindow window({100, 100});
    const auto controller = std::make_shared<UIViewController>();
    window.setRootViewController(controller);
    UIView view({0, 0, 10, 10});
    controller->view().addSubview(view);
    UIView::animate(1, [&] {
        view.setFrame({80, 0, 10, 10});
        view.setAlpha(0);
    });
    environment.loop.advance(0.5);
    const std::string shown = TreeWriter::json(window);
    EXPECT_NE(shown.find(R"("frame":[40,0,10,10])"), std::string::npos) << shown;
    EXPECT_NE(shown.find(R"("alpha":0.5)"), std::string::npos) << shown;
}

TEST(TreeWriter, TakesTheTextOfAButtonFromWhatItShows) {
    OffscreenEnvironment environment;
    UIWindow window({100, 100});
    const auto controller = std::make_shared<UIViewController>();
    window.setRootViewController(controller);
    UIButton button({0, 0, 80, 40});
    button.setTitle("Plain");
    button.setImage(UIImage::named("Disclosure"));
    button.titleLabel().setFont(UIFont::named("Roboto-Light", 28));
    controller->view().addSubview(button);
    EXPECT_NE(
        TreeWriter::json(window).find(
            R"("text":"Plain","image":"Disclosure","font":{"name":"Roboto-Light","size":28,"weight":"light"})"),
        std::string::npos);
    button.setAttributedTitle(NSAttributedString("Attributed"));
    EXPECT_NE(TreeWriter::json(window).find(R"("text":"Attributed","image")"), std::string::npos);
}

TEST(TreeWriter, SaysWhenTheFileCannotBeWritten) {
    OffscreenEnvironment environment;
    UIWindow window({100, 100});
    EXPECT_FALSE(TreeWriter::write(window, "/nonexistent/tree.json"));
}

} // namespace sela
