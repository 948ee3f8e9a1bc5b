#include "host/ShareHost.h"
#include "platform/uikit/UIButton.h"

#include <gtest/gtest.h>

#include <thread>

namespace sela {

namespace {

/// A card whose buttons end the request in all the ways there are.
class EndingController : public UIViewController {
public:
    explicit EndingController(NSExtensionContext& context) : context_(context) {}

    void viewDidLoad() override {
        UIViewController::viewDidLoad();
        place(addButton_, "addButton", 0, &EndingController::add);
        place(cancelButton_, "cancelButton", 50, &EndingController::cancel);
        place(hangButton_, "hangButton", 100, &EndingController::hang);
    }

    bool hasAddStarted() const { return addStarted_; }

private:
    void place(UIButton& button, const char* name, double top, void (EndingController::*action)(UIButton&)) {
        button.setName(name);
        button.setFrame({0, top, 100, 40});
        button.addTarget(this, action, UIControl::Event::touchUpInside);
        view().addSubview(button);
    }

    void add(UIButton&) {
        addStarted_ = true;
        DispatchQueue::global().async([this] {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            DispatchQueue::main().asyncAfter(0.05,
                                             [this] { context_.completeRequestReturningItems({}, {}); });
        });
    }

    void cancel(UIButton&) {
        UIView::animate(
            0.05, [this] { view().setTransform(CGAffineTransform::translation(0, 100)); },
            [this](bool) {
                context_.cancelRequestWithError(
                    std::make_shared<NSError>(NSCocoaErrorDomain, NSUserCancelledError, "Cancelled."));
            });
    }

    void hang(UIButton&) { addStarted_ = true; }

    NSExtensionContext& context_;
    UIButton addButton_;
    UIButton cancelButton_;
    UIButton hangButton_;
    bool addStarted_ = false;
};

struct Case {
    std::vector<std::string> arguments;
    ExitStatus status;
};

ExitStatus run(const std::vector<std::string>& arguments, NSExtensionContext& context) {
    ShareHost host(std::get<CommandLine>(CommandLine::parse(arguments)));
    const auto card = std::make_shared<EndingController>(context);
    return host.run({card, {}, {}, [card] { return card->hasAddStarted(); }}, context);
}

void expectStatuses(const std::vector<std::string>& mode, const std::vector<Case>& cases) {
    for (const Case& item : cases) {
        std::vector<std::string> arguments = mode;
        arguments.insert(arguments.end(), item.arguments.begin(), item.arguments.end());
        NSExtensionContext context({});
        EXPECT_EQ(run(arguments, context), item.status) << testing::PrintToString(arguments);
        EXPECT_EQ(context.hasEnded(), item.status != ExitStatus::cannotEnd);
    }
}

} // namespace

TEST(ShareHost, SaysHowTheRequestEndedWithoutAWindow) {
    expectStatuses({"--headless"}, {{{}, ExitStatus::cancelled},
                                    {{"--tap", "addButton"}, ExitStatus::completed},
                                    {{"--tap", "addButton", "--wait", "60"}, ExitStatus::completed},
                                    {{"--tap", "cancelButton"}, ExitStatus::cancelled},
                                    {{"--wait", "0.05"}, ExitStatus::cancelled},
                                    {{"--tap", "hangButton"}, ExitStatus::cannotEnd},
                                    {{"--tap", "noButton"}, ExitStatus::stepFailed},
                                    {{"--tap", "hangButton", "--tap", "noButton"}, ExitStatus::stepFailed}});
}

TEST(ShareHost, SaysHowTheRequestEndedInAWindow) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    expectStatuses({"--screen", "200x200"}, {{{"--tap", "addButton"}, ExitStatus::completed},
                                             {{"--tap", "cancelButton"}, ExitStatus::cancelled},
                                             {{"--tap", "hangButton"}, ExitStatus::cannotEnd},
                                             {{"--tap", "noButton"}, ExitStatus::stepFailed}});
}

} // namespace sela
