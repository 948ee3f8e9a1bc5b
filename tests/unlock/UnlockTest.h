#pragma once

#include "platform/foundation/Data.h"
#include "platform/foundation/ScopedMainQueue.h"
#include "platform/uikit/UIButton.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UINavigationController.h"
#include "platform/uikit/UIWindow.h"
#include "store/SharedAlbum.h"
#include "store/SharedFolder.h"
#include "support/FixedTextMeasurer.h"
#include "support/LogCapture.h"
#include "support/TemporaryHome.h"
#include "support/VirtualMainLoop.h"
#include "unlock/SelaShareExtensionAlbumsVc.h"
#include "unlock/SelaShareExtensionAlbumsVcDelegate.h"

#include <gtest/gtest.h>

#include <deque>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace sela {

using Passcode = std::optional<std::string>;

inline void publishText(std::string_view key, const Passcode& text) {
    std::optional<UserDefaults> defaults = sharedDefaults();
    ASSERT_TRUE(defaults);
    ASSERT_FALSE(text ? defaults->setString(key, *text) : defaults->removeObject(key));
}

/// Acts as the main application: stores a value under a settings key, or removes it.
inline void publishPasscode(const Passcode& passcode) {
    publishText(sharedPasswordKey, passcode);
}

inline void publishDecoyPasscode(const Passcode& passcode) {
    publishText(sharedFakePasswordKey, passcode);
}

inline void publishCatalogue(std::string_view json) {
    ASSERT_FALSE(sharedDefaults()->setData(sharedAlbumsKey, asData(json)));
}

inline void publishAlbums(const std::vector<SharedAlbum>& albums) {
    JSONWriter writer;
    writer.beginArray();
    for (const SharedAlbum& album : albums)
        writeJSONRecord(writer, album);
    writer.endArray();
    publishCatalogue(writer.text());
}

/// An album without a cover.
inline SharedAlbum album(std::vector<std::string> namePath, bool fake = false,
                         std::optional<std::string_view> password = std::nullopt) {
    return {std::move(namePath), fake, password ? std::optional(Secret(*password)) : std::nullopt,
            std::nullopt};
}

/// Records the picker's calls of its delegate.
struct RecordingScreen : UIViewController, SelaShareExtensionAlbumsVcDelegate {
    void setFakePasswordMode(bool fakePasswordMode) override { modes.push_back(fakePasswordMode); }
    void setSelectedAlbumName(const std::vector<std::string>& name) override { selected = name; }
    void updateTitle() override { titles.push_back(selected); }

    std::vector<bool> modes;
    std::vector<std::string> selected;
    std::vector<std::vector<std::string>> titles; ///< what was selected at each `updateTitle`
};

/// A window with a navigation controller on a fresh home; what is pushed is shown once `settle` has run.
class UnlockTest : public testing::Test {
protected:
    explicit UnlockTest(CGSize screen = {375, 667}) : window_(screen) {
        window_.setRootViewController(navigation_);
        update();
    }

    /// Pushes a new picker, with the recording screen as its delegate.
    void openPicker() {
        picker_ = std::make_shared<SelaShareExtensionAlbumsVc>();
        picker_->setDelegate(opener_);
        navigation_->pushViewController(picker_, true);
        settle();
    }

    /// Lays out and runs what is due, without moving the clock beyond running transitions.
    void settle() {
        do {
            update();
            if (navigation_->isTransitioning())
                loop_.advance(UINavigationController::transitionDuration);
        } while (navigation_->isTransitioning());
        update();
    }

    /// Runs what is due now and lays out.
    void update() {
        window_.prepareFrame();
        loop_.runPending();
        window_.prepareFrame();
    }

    /// The view of that name on the top screen, which must exist; the nearest to the root, so that a screen's
    /// own views come before those of its rows.
    UIView& view(const std::string& name) {
        for (std::deque<UIView*> waiting{&top().view()}; !waiting.empty(); waiting.pop_front()) {
            UIView& next = *waiting.front();
            if (next.name() == name)
                return next;
            waiting.insert(waiting.end(), next.subviews().begin(), next.subviews().end());
        }
        throw std::runtime_error("no view is named " + name);
    }
    UILabel& label(const std::string& name) { return dynamic_cast<UILabel&>(view(name)); }
    UIButton& button(const std::string& name) { return dynamic_cast<UIButton&>(view(name)); }
    UITableView& table() { return dynamic_cast<UITableView&>(view("tableView")); }

    /// A finger's tap in the middle of a view; false when the view cannot be reached there.
    bool tap(UIView& target) {
        update();
        const std::optional<CGPoint> point = window_.tapPoint(target);
        if (!point)
            return false;
        window_.touchBegan(*point);
        window_.touchEnded(*point);
        update();
        return true;
    }
    bool tap(const std::string& name) { return tap(view(name)); }
    void type(const std::string& digits) {
        for (const char digit : digits)
            EXPECT_TRUE(tap(std::string("button") + digit)) << digit;
    }

    bool isShown(const std::string& name) { return !view(name).isHidden(); }

    /// How many of the six dots are lit; those lit must be the first ones.
    int litDots() {
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

    UIViewController& top() { return *navigation_->topViewController(); }

    TemporaryHome home_;
    FixedTextMeasurer text_;
    VirtualMainLoop loop_;
    ScopedMainQueue mainQueue_{loop_};
    LogCapture log_;
    UIWindow window_;
    std::shared_ptr<RecordingScreen> opener_ = std::make_shared<RecordingScreen>();
    std::shared_ptr<UINavigationController> navigation_ = std::make_shared<UINavigationController>(opener_);
    std::shared_ptr<SelaShareExtensionAlbumsVc> picker_;
};

} // namespace sela
