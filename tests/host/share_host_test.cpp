#include "host/ShareHost.h"
#include "platform/uikit/UIButton.h"

#include <gtest/gtest.h>

#include <thread>

namespace sela {

namespace {

/// A card with a button that completes the request and one after which it never ends.
class EndingController : public UIViewController {
public:
    explicit EndingController(NSExtensionContext& context) : context_(context) {}

    void viewDidLoad() override {
        UIViewController::viewDidLoad();
        place(addButton_, "addButton", 0, &EndingController::add);
        place(hangButton_, "hangButton", 50, &EndingController::hang);
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

    void hang(UIButton&) { addStarted_ = true; }

    NSExtensionContext& context_;
    UIButton addButton_;
    UIButton hangButton_;
    bool addStarted_ = false;
};

struct Case {
    std::vector<std::string> arguments;
    ExitStatus status;
};

void expectStatuses(const std::vector<std::string>& mode, const std::vector<Case>& cases) {
    for (const Case& item : cases) {
        std::vector<std::string> arguments = mode;
        arguments.insert(arguments.end(), item.arguments.begin(), item.arguments.end());
        NSExtensionContext context({});
        ShareHost host(std::get<CommandLine>(CommandLine::parse(arguments)));
        const auto card = std::make_shared<EndingController>(context);
        EXPECT_EQ(host.run({card, {}, {}, [card] { return card->hasAddStarted(); }}, context), item.status)
            << testing::PrintToString(arguments);
        EXPECT_EQ(context.hasEnded(), item.status != ExitStatus::cannotEnd);
    }
}

} // namespace

TEST(ShareHost, SaysHowTheRequestEndedWithoutAWindow) {
    expectStatuses({"--headless"}, {{{}, ExitStatus::cancelled},
                                    {{"--tap", "addButton"}, ExitStatus::completed},
                                    {{"--tap", "addButton", "--wait", "60"}, ExitStatus::completed},
                                    {{"--wait", "0.05"}, ExitStatus::cancelled},
                                    {{"--tap", "hangButton"}, ExitStatus::cannotEnd},
                                    {{"--tap", "noButton"}, ExitStatus::stepFailed},
                                    {{"--tap", "hangButton", "--tap", "noButton"}, ExitStatus::stepFailed}});
}

TEST(ShareHost, SaysHowTheRequestEndedInAWindow) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    expectStatuses({"--screen", "200x200"}, {{{"--tap", "addButton"}, ExitStatus::completed},
                                             {{"--tap", "hangButton"}, ExitStatus::cannotEnd},
                                             {{"--tap", "noButton"}, ExitStatus::stepFailed}});
}

} // namespace sela
