#pragma once

#include "platform/foundation/ScopedMainQueue.h"
#include "platform/foundation/VirtualMainLoop.h"
#include "platform/uikit/UIButton.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UINavigationController.h"
#include "platform/uikit/UIWindow.h"
#include "store/SharedAlbum.h"
#include "support/LogCapture.h"
#include "support/TemporaryHome.h"
#include "unlock/SelaShareExtensionAlbumsVc.h"
#include "unlock/SelaShareExtensionAlbumsVcDelegate.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace sela {

using Passcode = std::optional<std::string>;

/// Stands for the main application: stores under a settings key, or takes away what is there.
void publishPasscode(const Passcode& passcode);
void publishDecoyPasscode(const Passcode& passcode);
void publishAlbums(const std::vector<SharedAlbum>& albums);
void publishCatalogue(std::string_view json);

/// An album without a cover.
SharedAlbum album(std::vector<std::string> namePath, bool fake = false,
                  std::optional<std::string> password = std::nullopt);

/// Records what the picker tells whoever opened it.
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
    explicit UnlockTest(CGSize screen = {375, 667});

    /// Pushes a new picker, with the recording screen as its delegate.
    void openPicker();

    /// Lays out and runs whatever is due, without moving the clock beyond running transitions.
    void settle();

    /// Runs what is due now and lays out.
    void update();

    /// The view of that name on the top screen; it must exist.
    UIView& view(const std::string& name);
    UILabel& label(const std::string& name) { return dynamic_cast<UILabel&>(view(name)); }
    UIButton& button(const std::string& name) { return dynamic_cast<UIButton&>(view(name)); }
    UITableView& table() { return dynamic_cast<UITableView&>(view("tableView")); }

    /// A finger's tap in the middle of a view; false when the view cannot be reached there.
    bool tap(UIView& target);
    bool tap(const std::string& name) { return tap(view(name)); }
    void type(const std::string& digits);

    bool isShown(const std::string& name) { return !view(name).isHidden(); }

    /// How many of the six dots are lit; those lit must be the first ones.
    int litDots();

    UIViewController& top() { return *navigation_->topViewController(); }

    TemporaryHome home_;
    VirtualMainLoop loop_;
    ScopedMainQueue mainQueue_{loop_};
    LogCapture log_;
    UIWindow window_;
    std::shared_ptr<RecordingScreen> opener_ = std::make_shared<RecordingScreen>();
    std::shared_ptr<UINavigationController> navigation_ = std::make_shared<UINavigationController>(opener_);
    std::shared_ptr<SelaShareExtensionAlbumsVc> picker_;
};

} // namespace sela
