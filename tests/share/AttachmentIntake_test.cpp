#include "share/AttachmentIntake.h"

#include "share/ShareTest.h"
#include "store/ShareExtensionError.h"
#include "support/BitmapFile.h"

#include <algorithm>
#include <fcntl.h>
#include <thread>
#include <utility>

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
    std::thread::id endThread;     ///< where it ended last

    static Provider failing() {
        return std::make_shared<NSItemProvider>(std::vector<std::string>{"public.jpeg"},
                                                [](const std::string&) -> Result<NSItemProvider::Item> {
                                                    return ShareExtensionError::make("not loaded");
                                                });
    }

    static Provider untyped() {
        return std::make_shared<NSItemProvider>(std::vector<std::string>(), nullptr);
    }

    /// A new intake for a request.
    void begin(std::vector<std::shared_ptr<NSObject>> items) {
        intake = std::make_shared<AttachmentIntake>();
        intake->begin(std::make_shared<NSExtensionContext>(std::move(items)), 320);
    }

    void share(std::vector<Provider> attachments) {
        begin({std::make_shared<NSExtensionItem>(std::move(attachments)),
               std::make_shared<NSExtensionItem>(
                   std::vector<Provider>{file("second item.jpg"), file("also there.jpg")})});
    }

    void save() {
        EXPECT_TRUE(intake->beginSaveRun());
        intake->saveAttachments([this](const ErrorRef& error) {
            ends.push_back(error ? error->localizedDescription() : "ok");
            endThread = std::this_thread::get_id();
        });
        loop.runUntilIdle();
    }

    /// The state of a run, and of each attachment: "recorded", why it failed, or "-".
    static std::string standing(const SaveRun& run) {
        static const char* const states[] = {"waiting", "saving", "stuck", "ended"};
        std::string text = states[static_cast<int>(run.state)];
        const char* separator = ": ";
        for (const AttachmentOutcome& outcome : run.outcomes) {
            text += std::exchange(separator, ", ");
            if (outcome.kind == AttachmentOutcome::Kind::recorded)
                text += "recorded";
            else
                text += outcome.reason ? outcome.reason->localizedFailureReason() : "-";
        }
        return text;
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
        begin(items);
        EXPECT_EQ(intake->getItemsCount(), 0);
        EXPECT_EQ(log.lines().back(), "getItemsCount count = 0");
        save();
    }
    EXPECT_THAT(ends, ElementsAre("ok", "ok", "ok", "ok"));
}

TEST_F(AttachmentIntakeTest, APictureInMemoryBecomesAJPEGWithoutANameOffTheMainThreadInTheVaultThatIsOpen) {
    const std::string file = home.write("picture.bmp", bitmapFile(2, 1, ~0U));
    const auto image =
        UIImage::contentsOfOpenFile(FileDescriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC)), 64);
    ASSERT_TRUE(image);
    share({NSItemProvider::ofImage(*image)});
    intake->setFakePasswordMode(true);
    save();
    EXPECT_NE(endThread, std::this_thread::get_id());
    ASSERT_EQ(recordedItems().size(), 1u);
    const SharedItem item = recordedItems().front();
    EXPECT_TRUE(item.fake);
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
        {failing(), "not loaded"},
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
        EXPECT_EQ(intake->currentAttachmentIndex(), 1);
        EXPECT_EQ(standing(intake->saveRun()), std::string("ended: recorded, ") + error + ", -");
    }
    EXPECT_THAT(log.lines(), Contains("error: not loaded"));
    EXPECT_THAT(log.lines(), Contains("saveItem, error: Unsupported file"));
}

TEST_F(AttachmentIntakeTest, TheRunTellsWhatBecameOfEachAttachmentWhereTheCompletionSaysLess) {
    const Provider gone =
        NSItemProvider::ofFile(URL::fileURL((home.path() / "source" / "gone.jpg").string()));
    const std::string unencodable = "The item cannot be encoded: a text is not UTF-8";
    const struct {
        std::optional<std::string> ledger;
        std::string album;
        Provider first;
        std::string standing;
    } cases[] = {
        {"{}", "A", file("empty.jpg", ""), "stuck: the file is empty, -"},
        {"{}", "A", gone, "ended: No such file or directory, -"},
        {"not JSON", "A", file("a.jpg"), "ended: recorded, recorded"},
        {std::nullopt, "\xFF", file("a.jpg"), "ended: " + unencodable + ", " + unencodable},
    };
    for (const auto& [ledger, album, first, expected] : cases) {
        EXPECT_FALSE(ledger ? sharedDefaults()->setData(sharedItemsKey, asData(*ledger))
                            : sharedDefaults()->removeObject(sharedItemsKey));
        share({first, file("b.jpg")});
        intake->setSelectedAlbumName({album});
        save();
        EXPECT_EQ(standing(intake->saveRun()), expected);
    }
}

TEST_F(AttachmentIntakeTest, TheRunTellsHowFarItIs) {
    share({file("a.jpg", "four"), file("b.mov", std::string(5 << 20, 'x'))});
    std::vector<std::string> told;
    intake->setSaveObserver([&](const SaveRun& run) {
        told.push_back(std::to_string(run.currentAttachmentIndex) + ": " + std::to_string(run.savedBytes) +
                       " + " + std::to_string(run.copiedBytes) + " of " + std::to_string(run.currentSize));
    });
    save();
    told.erase(std::unique(told.begin(), told.end()), told.end());
    EXPECT_THAT(told,
                ElementsAre("0: 0 + 0 of 0", "0: 0 + 4 of 4", "1: 4 + 0 of 0", "1: 4 + 2097152 of 5242880",
                            "1: 4 + 4194304 of 5242880", "1: 4 + 5242880 of 5242880", "2: 5242884 + 0 of 0"));
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
    EXPECT_EQ(intake->thumbnailCount(), 3);
    ASSERT_EQ(intake->thumbnails().size(), 1u);
    EXPECT_EQ(intake->thumbnails().front().assetName(), "audiosmall");
    EXPECT_THAT(log.lines(),
                ElementsAre("getItemsCount count = 5", "loadThumbnails inputItems count = 2",
                            "item[0]: fileName = a.mp3", "item[0]: typeIdentifier = public.mp3",
                            "loadThumbnails inputItems count = 2", "error: not loaded",
                            "loadThumbnails inputItems count = 2", "loadThumbnails inputItems count = 2"));

    share({file("a.mp3"), untyped(), file("c.mp3")});
    intake->loadThumbnails([&] { ++finished; });
    loop.runUntilIdle();
    EXPECT_EQ(finished, 2);
    EXPECT_EQ(intake->thumbnailCount(), 1);
}

TEST_F(AttachmentIntakeTest, AWalkEndsSilentlyWhenItsOwnerIsGone) {
    share({file("a.jpg"), file("b.jpg")});
    EXPECT_TRUE(intake->beginSaveRun());
    intake->saveAttachments([this](const ErrorRef&) { ends.emplace_back("called"); });
    intake->loadThumbnails([this] { ends.emplace_back("called"); });
    intake.reset();
    loop.runUntilIdle();
    EXPECT_THAT(ends, IsEmpty());
    EXPECT_THAT(recordedNames(), Not(Contains("b.jpg")));
}

} // namespace
} // namespace sela
