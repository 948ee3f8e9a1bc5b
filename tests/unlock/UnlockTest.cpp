#include "unlock/UnlockTest.h"

#include "platform/foundation/Data.h"
#include "store/SharedFolder.h"

#include <deque>
#include <stdexcept>

namespace sela {

namespace {

void publishText(std::string_view key, const Passcode& text) {
    std::optional<UserDefaults> defaults = sharedDefaults();
    ASSERT_TRUE(defaults);
    ASSERT_FALSE(text ? defaults->setString(key, *text) : defaults->removeObject(key));
}

/// The nearest to the root first, so that a screen's own views come before those of its rows.
UIView* firstNamed(UIView& root, const std::string& name) {
    std::deque<UIView*> waiting{&root};
    for (; !waiting.empty(); waiting.pop_front()) {
        if (waiting.front()->name() == name)
            return waiting.front();
        waiting.insert(waiting.end(), waiting.front()->subviews().begin(), waiting.front()->subviews().end());
    }
    return nullptr;
}

} // namespace

void publishPasscode(const Passcode& passcode) {
    publishText(sharedPasswordKey, passcode);
}

void publishDecoyPasscode(const Passcode& passcode) {
    publishText(sharedFakePasswordKey, passcode);
}

void publishAlbums(const std::vector<SharedAlbum>& albums) {
    JSONWriter writer;
    writer.beginArray();
    for (const SharedAlbum& album : albums)
        writeJSONRecord(writer, SharedAlbum::jsonFields(), &album);
    writer.endArray();
    publishCatalogue(writer.text());
}

void publishCatalogue(std::string_view json) {
    ASSERT_FALSE(sharedDefaults()->setData(sharedAlbumsKey, asData(json)));
}

SharedAlbum album(std::vector<std::string> namePath, bool fake, std::optional<std::string> password) {
    return {std::move(namePath), fake, std::move(password), std::nullopt};
}

UnlockTest::UnlockTest(CGSize screen) : window_(screen) {
    window_.setRootViewController(navigation_);
    update();
}

void UnlockTest::openPicker() {
    picker_ = std::make_shared<SelaShareExtensionAlbumsVc>();
    picker_->setDelegate(opener_);
    navigation_->pushViewController(picker_, true);
    settle();
}

void UnlockTest::settle() {
    do {
        update();
        if (navigation_->isTransitioning())
            loop_.advance(UINavigationController::transitionDuration);
    } while (navigation_->isTransitioning());
    update();
}

void UnlockTest::update() {
    window_.prepareFrame();
    loop_.runPending();
    window_.prepareFrame();
}

UIView& UnlockTest::view(const std::string& name) {
    UIView* const found = firstNamed(top().view(), name);
    if (!found)
        throw std::runtime_error("no view is named " + name);
    return *found;
}

bool UnlockTest::tap(UIView& target) {
    update();
    const std::optional<CGPoint> point = window_.tapPoint(target);
    if (!point)
        return false;
    window_.touchBegan(*point);
    window_.touchEnded(*point);
    update();
    return true;
}

void UnlockTest::type(const std::string& digits) {
    for (const char digit : digits)
        EXPECT_TRUE(tap(std::string("button") + digit)) << digit;
}

int UnlockTest::litDots() {
    UIView& row = view("indicatorContainer");
    int lit = 0;
    bool wasLit = true;
    for (UIView* const dot : row.subviews()) {
        EXPECT_TRUE(wasLit || dot->isHidden()) << "the dots light from the left";
        wasLit = !dot->isHidden();
        lit += wasLit ? 1 : 0;
    }
    EXPECT_EQ(std::min<std::size_t>(std::stoul(row.accessibilityValue()), row.subviews().size()), lit);
    return lit;
}

} // namespace sela
