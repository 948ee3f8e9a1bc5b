#include "share/AttachmentIntake.h"

#include "share/ShareTest.h"

#include <cerrno>

namespace sela {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;

using Provider = std::shared_ptr<NSItemProvider>;

class AttachmentIntakeTest : public ShareTest {
protected:
    std::shared_ptr<AttachmentIntake> intake = std::make_shared<AttachmentIntake>();
    std::vector<std::string> ends; ///< of the save walk: "ok" or the error's description

    static Provider failing() {
        return std::make_shared<NSItemProvider>(std::vector<std::string>{"public.jpeg"},
                                                [](const std::string&) -> Result<NSItemProvider::Item> {
                                                    return NSError::posix(EACCES, "load");
                                                });
    }

    static Provider untyped() {
        return std::make_shared<NSItemProvider>(std::vector<std::string>(), nullptr);
    }

    void share(std::vector<Provider> attachments) {
        auto first = std::make_shared<NSExtensionItem>(std::move(attachments));
        auto second = std::make_shared<NSExtensionItem>(
            std::vector<Provider>{file("second item.jpg"), file("also there.jpg")});
        intake->extensionContext =
            std::make_shared<NSExtensionContext>(std::vector<std::shared_ptr<NSObject>>{first, second});
    }

    void save() {
        intake->currentAttachmentIndex = 0;
        intake->saveAttachments(
            [this](const ErrorRef& error) { ends.push_back(error ? error->localizedDescription() : "ok"); });
        loop.runUntilIdle();
    }

    static std::vector<std::string> recordedNames() {
        std::vector<std::string> names;
        for (const SharedItem& item : recordedItems())
            names.push_back(item.preferredName.value_or("none"));
        return names;
    }
};

TEST_F(AttachmentIntakeTest, ARequestWithoutAttachmentsHasNoneAndSavingEndsAtOnce) {
    class OtherItem : public NSObject {};
    const std::vector<std::shared_ptr<NSObject>> lists[] = {
        {}, {std::make_shared<OtherItem>()}, {std::make_shared<NSExtensionItem>()}};
    EXPECT_EQ(intake->getItemsCount(), 0);
    save();
    for (const auto& items : lists) {
        intake->extensionContext = std::make_shared<NSExtensionContext>(items);
        EXPECT_EQ(intake->getItemsCount(), 0);
        EXPECT_EQ(log.lines().back(), "getItemsCount count = 0");
        save();
    }
    EXPECT_THAT(ends, ElementsAre("ok", "ok", "ok", "ok"));
}

TEST_F(AttachmentIntakeTest, APictureInMemoryBecomesAJPEGWithoutAName) {
    share({NSItemProvider::ofImage(UIImage::fromPixels({2, 1, {255, 0, 0, 255, 0, 0, 255, 255}}))});
    save();
    ASSERT_EQ(recordedItems().size(), 1u);
    const SharedItem item = recordedItems().front();
    EXPECT_THAT(item.fileName, MatchesRegex("[0-9]+\\.[0-9]+\\.jpg"));
    EXPECT_EQ(item.preferredName, std::nullopt);
    EXPECT_THAT(contentOf(home.container() / "Items" / item.fileName), testing::StartsWith("\xFF\xD8\xFF"));
}

TEST_F(AttachmentIntakeTest, TheFirstFailureEndsTheWalk) {
    const struct {
        Provider bad;
        const char* error;
    } cases[] = {
        {untyped(), "No type indentifier"},
        {failing(), "load: Permission denied"},
        {NSItemProvider::ofText("text"), "Unsupported shared item"},
        {NSItemProvider::ofData(toData("data"), "public.data"), "Unsupported shared item"},
        {NSItemProvider::ofImage(*UIImage::named("Success")), "Failed to encode image"},
        {file("b.txt"), "Unsupported file"},
    };
    std::vector<std::string> names;
    for (const auto& [bad, error] : cases) {
        ends.clear();
        share({file("a.jpg"), bad, file("c.jpg")});
        save();
        names.emplace_back("a.jpg");
        EXPECT_THAT(ends, ElementsAre(error));
        EXPECT_EQ(recordedNames(), names) << error;
        EXPECT_EQ(intake->currentAttachmentIndex, 1);
    }
    EXPECT_THAT(log.lines(), Contains("error: load: Permission denied"));
    EXPECT_THAT(log.lines(), Contains("saveItem, error: Unsupported file"));
}

TEST_F(AttachmentIntakeTest, AnAttachmentIsLoadedWithItsFirstTypeOnly) {
    std::vector<std::string> asked;
    share({std::make_shared<NSItemProvider>(std::vector<std::string>{"z.first", "public.jpeg"},
                                            [&](const std::string& type) -> Result<NSItemProvider::Item> {
                                                asked.push_back(type);
                                                return NSItemProvider::Item();
                                            })});
    save();
    EXPECT_THAT(asked, ElementsAre("z.first"));
}

TEST_F(AttachmentIntakeTest, AnUnreadableLedgerEndsTheWalkOfTheFirstInputItemAndLetsItGoOn) {
    EXPECT_FALSE(sharedDefaults()->setData(sharedItemsKey, asData("not JSON")));
    share({file("a.jpg"), file("b.jpg")});
    EXPECT_EQ(intake->getItemsCount(), 2);
    EXPECT_EQ(log.lines().back(), "getItemsCount count = 2");
    save();
    EXPECT_THAT(ends, ElementsAre(HasSubstr("JSON"), "ok"));
    EXPECT_THAT(log.lines(), Contains("InputItems count = 2"));
    EXPECT_THAT(recordedNames(), ElementsAre("a.jpg", "b.jpg"));
}

TEST_F(AttachmentIntakeTest, ThreePlacesAreLookedAtUpToAnAttachmentWithoutAType) {
    share({file("a.mp3"), failing(), NSItemProvider::ofText("text"), file("d.mp3"), file("e.mp3")});
    int finished = 0;
    intake->loadThumbnails([&] { ++finished; });
    EXPECT_EQ(finished, 0);
    loop.runUntilIdle();
    EXPECT_EQ(finished, 1);
    EXPECT_EQ(intake->thumbnailCount, 3);
    ASSERT_EQ(intake->thumbnails.size(), 1u);
    EXPECT_EQ(intake->thumbnails.front().assetName(), "audiosmall");
    EXPECT_THAT(log.lines(),
                ElementsAre("loadThumbnails inputItems count = 2", "item[0]: fileName = a.mp3",
                            "item[0]: typeIdentifier = public.mp3", "loadThumbnails inputItems count = 2",
                            "error: load: Permission denied", "loadThumbnails inputItems count = 2",
                            "loadThumbnails inputItems count = 2"));

    intake = std::make_shared<AttachmentIntake>();
    share({file("a.mp3"), untyped(), file("c.mp3")});
    intake->loadThumbnails([&] { ++finished; });
    loop.runUntilIdle();
    EXPECT_EQ(finished, 2);
    EXPECT_EQ(intake->thumbnailCount, 1);
}

TEST_F(AttachmentIntakeTest, AWalkEndsSilentlyWhenItsOwnerIsGone) {
    share({file("a.jpg"), file("b.jpg")});
    const std::shared_ptr<NSExtensionContext> context = intake->extensionContext;
    intake->currentAttachmentIndex = 0;
    intake->saveAttachments([this](const ErrorRef&) { ends.emplace_back("called"); });
    intake->loadThumbnails([this] { ends.emplace_back("called"); });
    intake.reset();
    loop.runUntilIdle();
    EXPECT_THAT(ends, IsEmpty());
    EXPECT_THAT(recordedNames(), Not(Contains("b.jpg")));
}

} // namespace
} // namespace sela
