#include "platform/uikit/UIButton.h"
#include "platform/uikit/UINavigationController.h"
#include "platform/uikit/UIWindow.h"
#include "share/PrincipalClasses.h"
#include "share/SelaShareExtensionVc.h"
#include "share/ShareTest.h"
#include "share/ShareViewController.h"

#include <algorithm>

namespace sela {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

/// A request on the extension's own screens, in a window without a display, on a clock that the test moves.
class ShareFlow : public ShareTest {
protected:
    std::unique_ptr<UIWindow> window;
    std::shared_ptr<NSExtensionContext> context;
    std::vector<std::string> ends; ///< "completed", or the code of the cancellation

    void TearDown() override {
        window.reset();
        context.reset();
        loop.runUntilIdle();
    }

    void open(std::vector<std::shared_ptr<NSItemProvider>> attachments) {
        auto item = std::make_shared<NSExtensionItem>(std::move(attachments));
        context = std::make_shared<NSExtensionContext>(std::vector<std::shared_ptr<NSObject>>{item});
        context->onEnd = [this](const ErrorRef& error) {
            const auto* const cancellation = dynamic_cast<const NSError*>(error.get());
            ends.push_back(cancellation ? cancellation->domain() + " " + std::to_string(cancellation->code())
                                        : "completed");
        };
        window = std::make_unique<UIWindow>(CGSize{375, 667});
        const auto root = makePrincipalViewController(principalClassName);
        root->setExtensionContext(context);
        window->setRootViewController(root);
        window->prepareFrame();
    }

    SelaShareExtensionVc& screen() { return *shareScreenOf(*window->rootViewController()); }
    UIView& view(const std::string& name) { return *window->viewNamed(name); }
    UILabel& label(const std::string& name) { return dynamic_cast<UILabel&>(view(name)); }
    std::string title() { return dynamic_cast<UIButton&>(view("albumButton")).attributedTitle()->string(); }

    bool tap(const std::string& name) {
        window->prepareFrame();
        UIView* const target = window->viewNamed(name);
        const std::optional<CGPoint> point = target ? window->tapPoint(*target) : std::nullopt;
        if (!point)
            return false;
        window->touchBegan(*point);
        window->touchEnded(*point);
        return true;
    }
};

TEST_F(ShareFlow, TheTitleNamesAnAlbumOfOneOrTwoNamesInFullAndElseItsFirst) {
    using Names = std::vector<std::string>;
    open({file("a.mp3")});
    for (const auto& [album, name] : {std::pair(Names{"Holidays", "Trips"}, "Holidays/Trips"),
                                      {{"A", "b", "c"}, "A"},
                                      {{"100%@"}, "100%@"}}) {
        screen().setSelectedAlbumName(album);
        screen().updateTitle();
        EXPECT_EQ(title(), std::string("Add 1 file to ") + name);
        // Where there is too little room, of two names the parent is cut, never the one that was chosen.
        std::string cut;
        for (const auto& run : dynamic_cast<UIButton&>(view("albumButton")).attributedTitle()->runs())
            cut += run.attributes.givesWay ? run.text : "";
        EXPECT_EQ(cut, album.size() == 2 ? album.front() : "");
    }
}

TEST_F(ShareFlow, AFileWithoutAPictureIsASheetWithItsExtension) {
    open({file("a.dng")});
    EXPECT_TRUE(view("documentSheet").isHidden());
    loop.runUntilIdle();
    EXPECT_FALSE(view("documentSheet").isHidden());
    EXPECT_EQ(label("extensionLabel").text(), "DNG");
}

TEST_F(ShareFlow, AddingGoesThroughItsStagesByTheClock) {
    open({file("a.jpg"), file("b.jpg")});
    loop.runPending();
    EXPECT_TRUE(tap("addButton"));
    loop.advance(0.29);
    EXPECT_EQ(label("resultLabel").text(), "Added!");
    EXPECT_THAT(recordedItems(), IsEmpty());
    loop.advance(0.02);
    EXPECT_EQ(label("resultLabel").text(), "Adding...");
    EXPECT_FALSE(view("activityIndicator").isHidden());
    EXPECT_EQ(view("containerView").transform().a, 0);
    EXPECT_THAT(recordedItems(), IsEmpty());
    loop.advance(0.3);
    EXPECT_EQ(recordedItems().size(), 2u);
    EXPECT_EQ(label("resultLabel").text(), "Done");
    EXPECT_TRUE(view("activityIndicator").isHidden());
    EXPECT_FALSE(view("resultIcon").isHidden());
    EXPECT_EQ(view("resultView").transform(), CGAffineTransform());
    loop.advance(1.45);
    EXPECT_THAT(ends, IsEmpty());
    loop.advance(0.1);
    EXPECT_THAT(ends, ElementsAre("completed"));
}

TEST_F(ShareFlow, AddActsOnce) {
    open({file("a.jpg")});
    EXPECT_TRUE(tap("addButton"));
    UIButton& button = dynamic_cast<UIButton&>(view("addButton"));
    for (int i = 0; i < 30; ++i) {
        screen().onAddButtonTouched(button);
        loop.advance(0.1);
    }
    EXPECT_EQ(recordedItems().size(), 1u);
    EXPECT_THAT(ends, ElementsAre("completed"));
    EXPECT_EQ(std::ranges::count(log.lines(), "copyItem: readBytes = 1, totalReadBytes = 1"), 1);
}

TEST_F(ShareFlow, WhatIsPastedBeforeAddJoinsTheRequest) {
    open({file("a.jpg")});
    EXPECT_TRUE(screen().append({file("b.jpg"), file("c.jpg")}));
    loop.runUntilIdle();
    window->prepareFrame();
    EXPECT_EQ(title(), "Add 3 files to Default Album");
    EXPECT_EQ(view("imageViewContainer").bounds().size.height, 142);
    EXPECT_EQ(screen().intake().thumbnailCount(), 3);
    EXPECT_TRUE(tap("addButton"));
    EXPECT_FALSE(screen().append({file("d.jpg")}));
    loop.advance(5);
    EXPECT_THAT(ends, ElementsAre("completed"));
    EXPECT_EQ(recordedItems().size(), 3u);
}

TEST_F(ShareFlow, ARequestThatIsCancelledBeginsNoFurtherFile) {
    // Saving begins at 0.6 seconds: before that no file is under way, then the first one is.
    for (const auto& [moment, recorded] : {std::pair(0.1, 0u), std::pair(0.4, 0u), std::pair(0.6, 1u)}) {
        ends.clear();
        open({file("a.jpg"), file("b.jpg"), file("c.jpg")});
        EXPECT_TRUE(tap("addButton"));
        loop.asyncAfter(moment, [this] {
            context->cancelRequestWithError(
                std::make_shared<NSError>(NSCocoaErrorDomain, NSUserCancelledError, "closed"));
        });
        loop.advance(5);
        EXPECT_THAT(ends, ElementsAre("NSCocoaErrorDomain 3072"));
        EXPECT_LE(recordedItems().size(), recorded) << moment;
        EXPECT_EQ(label("resultLabel").text(), "Adding...");
    }
}

TEST_F(ShareFlow, CancelSlidesAwayAndCancelsAlsoWhenTheSlideIsInterrupted) {
    for (const bool interrupted : {true, false}) {
        ends.clear();
        open({file("a.jpg")});
        EXPECT_TRUE(tap("cancelButton"));
        loop.advance(0.19);
        EXPECT_THAT(ends, IsEmpty());
        if (interrupted)
            screen().navigationController()->view().setTransform(CGAffineTransform());
        loop.advance(interrupted ? 0 : 0.02);
        EXPECT_THAT(ends, ElementsAre("NSCocoaErrorDomain 3072"));
    }
    EXPECT_EQ(screen().navigationController()->view().transform(), CGAffineTransform::translation(0, 390));
    EXPECT_THAT(recordedItems(), IsEmpty());
}

TEST_F(ShareFlow, AnInterruptedAddGoesNoFurther) {
    open({file("a.jpg")});
    EXPECT_TRUE(tap("addButton"));
    loop.advance(0.1);
    view("containerView").setTransform(CGAffineTransform());
    loop.advance(5);
    EXPECT_EQ(label("resultLabel").text(), "Added!");
    EXPECT_THAT(recordedItems(), IsEmpty());
    EXPECT_THAT(ends, IsEmpty());
}

TEST_F(ShareFlow, ScreensThatAreGoneMakeDelayedStepsDoNothing) {
    for (const double moment : {0.1, 0.4, 1.0}) {
        open({file("a.jpg")});
        EXPECT_TRUE(tap("addButton"));
        loop.advance(moment);
        window.reset();
        loop.advance(5);
        EXPECT_THAT(ends, IsEmpty()) << moment;
    }
}

TEST_F(ShareFlow, TheComposeScreenCompletesAtOnceAndSavesNothing) {
    context = std::make_shared<NSExtensionContext>(std::vector<std::shared_ptr<NSObject>>());
    context->onEnd = [this](const ErrorRef& error) { ends.emplace_back(error ? "cancelled" : "completed"); };
    const auto compose = std::dynamic_pointer_cast<SLComposeServiceViewController>(
        makePrincipalViewController("SelaShareExtension.ShareViewController"));
    ASSERT_TRUE(compose);
    compose->setExtensionContext(context);
    EXPECT_TRUE(compose->isContentValid());
    EXPECT_THAT(compose->configurationItems(), IsEmpty());
    compose->didSelectPost();
    compose->didSelectPost();
    EXPECT_THAT(ends, ElementsAre("completed"));
    EXPECT_EQ(log.lines().back(), "NSExtensionContext: the request has ended already");
    EXPECT_EQ(makePrincipalViewController("ShareViewController"), nullptr);
}

TEST(RequestEndDeathTest, EndingWithoutARequestStopsTheProcess) {
    EXPECT_DEATH(ShareViewController().didSelectPost(), "the extension has no request to end");
}

} // namespace
} // namespace sela
