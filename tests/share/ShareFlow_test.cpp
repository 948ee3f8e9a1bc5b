#include "platform/uikit/UIButton.h"
#include "platform/uikit/UINavigationController.h"
#include "platform/uikit/UIWindow.h"
#include "share/PrincipalClasses.h"
#include "share/SelaShareExtensionVc.h"
#include "share/ShareTest.h"
#include "share/ShareViewController.h"

#include <algorithm>
#include <cmath>

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

    void open(std::vector<std::shared_ptr<NSItemProvider>> attachments, CGSize screen = {375, 667}) {
        auto item = std::make_shared<NSExtensionItem>(std::move(attachments));
        context = std::make_shared<NSExtensionContext>(std::vector<std::shared_ptr<NSObject>>{item});
        context->onEnd = [this](const ErrorRef& error) {
            const auto* const cancellation = dynamic_cast<const NSError*>(error.get());
            ends.push_back(cancellation ? cancellation->domain() + " " + std::to_string(cancellation->code())
                                        : "completed");
        };
        window = std::make_unique<UIWindow>(screen);
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

    CGRect shown(const std::string& name) { return view(name).convert(view(name).bounds(), *window); }
};

void expectRect(const CGRect& rect, double x, double y, double width, double height) {
    EXPECT_NEAR(rect.origin.x, x, 1e-9);
    EXPECT_NEAR(rect.origin.y, y, 1e-9);
    EXPECT_NEAR(rect.size.width, width, 1e-9);
    EXPECT_NEAR(rect.size.height, height, 1e-9);
}

TEST_F(ShareFlow, TheCardIsScaledAndNothingOnItIsClippedOrTouches) {
    const struct {
        CGSize screen;
        double scale;
    } cases[] = {
        {{320, 568}, 320.0 / 375},   {{375, 667}, 1},  {{414, 896}, 414.0 / 375}, {{600, 960}, 600.0 / 375},
        {{767, 1024}, 767.0 / 375},  {{1024, 768}, 1}, {{768, 1024}, 1},          {{667, 375}, 1},
        {{1024, 1366}, 1024.0 / 768}};
    for (const auto& [screen, scale] : cases) {
        open({file("a.mp3"), file("b.mp3"), file("c.mp3")}, screen);
        const CGRect card = shown("container");
        const double width = 320 * scale, height = 390 * scale;
        expectRect(card, (screen.width - width) / 2, (screen.height - height) / 2, width, height);
        EXPECT_DOUBLE_EQ(view("container").layer().cornerRadius(), 13 * scale);
        EXPECT_TRUE(view("container").clipsToBounds());
        EXPECT_DOUBLE_EQ(view("cancelButton").bounds().size.width, std::trunc(110 * scale));
        EXPECT_DOUBLE_EQ(view("addButton").layer().cornerRadius(), std::trunc(40 * scale) / 2);
        EXPECT_DOUBLE_EQ(label("titleLabel").font().size(), 20 * scale);
        double below = card.minY();
        for (const char* const name : {"titleLabel", "albumButton", "imageViewContainer", "cancelButton"}) {
            const CGRect rect = shown(name);
            EXPECT_GE(rect.minY(), below) << name;
            EXPECT_GT(rect.minX(), card.minX()) << name;
            EXPECT_LE(rect.maxX(), card.maxX()) << name;
            below = rect.maxY();
        }
        EXPECT_LT(below, card.maxY());
        EXPECT_GT(shown("addButton").minX(), shown("cancelButton").maxX());
        EXPECT_GE(shown("disclosureIcon").minX(), shown("albumButton").maxX());
        loop.runUntilIdle();
    }
}

TEST_F(ShareFlow, ThePileOfThumbnailsDependsOnTheirNumber) {
    const struct {
        std::size_t files;
        double top; ///< below the album's line
        double height;
        double second; ///< tops within the pile
        double third;
    } piles[] = {{0, 37, 128, -7, -14}, {1, 37, 128, -7, -14}, {2, 34, 135, 0, -7}, {4, 30, 142, 7, 0}};
    for (const auto& [files, top, height, second, third] : piles) {
        open(std::vector<std::shared_ptr<NSItemProvider>>(files, file("a.mp3")));
        EXPECT_EQ(view("imageViewContainer").frame().size, (CGSize{178, height})) << files;
        EXPECT_NEAR(shown("imageViewContainer").minY() - shown("albumButton").minY() - 44, top, 1e-9);
        EXPECT_EQ(shown("titleLabel").origin.y, shown("containerView").origin.y);
        expectRect(view("imageView1Container").frame(), 0, height - 128, 178, 128);
        expectRect(view("imageView2Container").frame(), 18, second, 142, 100);
        expectRect(view("imageView3Container").frame(), 32.5, third, 113, 100);
        loop.runUntilIdle();
        std::size_t shownImages = 0;
        for (const char* const name : {"imageView1", "imageView2", "imageView3"})
            shownImages += dynamic_cast<UIImageView&>(view(name)).image().has_value();
        EXPECT_EQ(shownImages, std::min<std::size_t>(files, 3));
    }
}

TEST_F(ShareFlow, TheTitleSaysHowManyAndWhere) {
    using Names = std::vector<std::string>;
    for (const auto& [album, name] :
         {std::pair(Names{"Holidays", "Trips"}, "Holidays/Trips"), {{"A", "b", "c"}, "A"}}) {
        open({file("a.mp3")});
        EXPECT_EQ(title(), "Add 1 file to Default Album");
        screen().setSelectedAlbumName(album);
        screen().updateTitle();
        EXPECT_EQ(title(), std::string("Add 1 file to ") + name);
        loop.runUntilIdle();
    }
    open({});
    EXPECT_EQ(title(), "Add 0 files to Default Album");
    loop.runUntilIdle();
    open({file("a.mp3"), file("b.mp3"), file("c.mp3"), file("d.mp3")});
    EXPECT_EQ(title(), "Add 4 files to Default Album");
    const auto& runs = dynamic_cast<UIButton&>(view("albumButton")).attributedTitle()->runs();
    ASSERT_EQ(runs.size(), 4u);
    for (std::size_t i = 0; i < runs.size(); ++i)
        EXPECT_EQ(runs[i].attributes.foregroundColor->name(), i % 2 == 0 ? "AppTextSecond" : "AppTint");
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
    EXPECT_EQ(screen().intake().thumbnailCount, 3);
    EXPECT_TRUE(tap("addButton"));
    EXPECT_FALSE(screen().append({file("d.jpg")}));
    loop.advance(5);
    EXPECT_THAT(ends, ElementsAre("completed"));
    EXPECT_EQ(recordedItems().size(), 3u);
}

TEST_F(ShareFlow, EveryOutcomeLooksLikeDoneAndEndsOnce) {
    const struct {
        const char* ledger;
        std::vector<std::shared_ptr<NSItemProvider>> attachments;
        std::size_t recorded;
    } outcomes[] = {{"{}", {}, 0},
                    {"{}", {file("a.jpg"), file("b.txt"), file("c.jpg")}, 1},
                    {"not JSON", {file("a.jpg"), file("b.jpg")}, 2},
                    {"not JSON", {file("a.jpg"), file("b.txt")}, 1}};
    for (const auto& [ledger, attachments, recorded] : outcomes) {
        ends.clear();
        EXPECT_FALSE(sharedDefaults()->setData(sharedItemsKey, asData(ledger)));
        open(attachments);
        EXPECT_TRUE(tap("addButton"));
        loop.advance(0.7);
        EXPECT_EQ(label("resultLabel").text(), "Done");
        loop.advance(5);
        EXPECT_THAT(ends, ElementsAre("completed"));
        EXPECT_EQ(recordedItems().size(), recorded) << attachments.size() << " attachments";
        // That of the file which is missing, not that of a ledger which was replaced.
        const ErrorRef error = screen().saveError();
        EXPECT_EQ(error != nullptr, recorded < attachments.size());
        EXPECT_THAT(error ? error->localizedDescription() : "", Not(testing::HasSubstr("JSON")));
    }
    EXPECT_THAT(log.lines(), Not(Contains("NSExtensionContext: the request has ended already")));
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
