#pragma once

#include "platform/foundation/Secret.h"
#include "platform/uikit/UITableView.h"
#include "platform/uikit/UIViewController.h"
#include "unlock/AlbumCovers.h"
#include "unlock/AlbumTree.h"
#include "unlock/PasscodeCard.h"
#include "unlock/PasscodeKeypad.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace sela {

class SelaShareExtensionAlbumCell;
class SelaShareExtensionAlbumsVcDelegate;

/// The screen on which the user picks an album. It asks for the vault passcode or the decoy passcode and then
/// shows the albums of the vault that was unlocked, without asking when the vault passcode is empty; where
/// the main application has published no passcode or no catalogue it asks the user to launch it. The chosen
/// album is passed to the delegate, and the screen pops itself.
///
/// Catalogue and passcodes are read again at each use. The screen has no unlocked state: after a match it is
/// refreshed once more while the entry still has the code, and not again. Main thread only.
class SelaShareExtensionAlbumsVc : public UIViewController,
                                   public UITableViewDataSource,
                                   public UITableViewDelegate {
public:
    SelaShareExtensionAlbumsVc();

    /// There are no archives: stops the process.
    explicit SelaShareExtensionAlbumsVc(const NSCoder& coder);

    /// The delegate, which gets the choice, held weakly; null at first.
    const std::weak_ptr<SelaShareExtensionAlbumsVcDelegate>& delegate() const { return delegate_; }
    void setDelegate(std::weak_ptr<SelaShareExtensionAlbumsVcDelegate> delegate) {
        delegate_ = std::move(delegate);
    }

    /// Whether no cover is being decoded any more.
    bool areCoversShown() const { return !covers_->isLoading(); }

    const AlbumTree& albums() const { return albums_; }

    /// Whether the albums are shown, that is whether they are unlocked.
    bool showsAlbums() const { return !tableView_.isHidden(); }

    void viewDidLoad() override;

    /// The action of the digit keys. The entry is compared after every digit, first with the vault passcode,
    /// then with the decoy passcode of any length; it has failed when it is as long as the vault passcode.
    void onKeyTouched(UIButton& button);

    /// The action of the back button: leaves without a choice.
    void onBackButtonTouched(UIButton& button);

    int numberOfSections(UITableView& tableView) override;
    int numberOfRows(UITableView& tableView, int section) override;
    UITableViewCell& cellForRow(UITableView& tableView, const IndexPath& indexPath) override;
    double heightForRow(UITableView& tableView, const IndexPath& indexPath) override;

    /// Passes the album to the delegate, without asking for the album's own password, which only protects
    /// unfolding its children.
    void didSelectRow(UITableView& tableView, const IndexPath& indexPath) override;

private:
    /// The published passcodes, read at one moment.
    struct Passcodes {
        std::optional<Secret> vault;
        std::optional<Secret> decoy;

        static Passcodes read();
    };

    void buildViews();
    void layoutTable();
    void layoutLaunchMessage(double scale);
    void styleTable();
    void loadAlbums(const Passcodes& passcodes);
    void refresh();
    void refresh(const Passcodes& passcodes);
    void clearEntry();
    void showMessage();
    void showVaultBusy();
    bool findsVaultBusy();
    std::size_t passcodeLength() const;
    void waitForVault();
    void onVaultFree();
    void showAlbumTable();
    void showKeypad();
    bool entryOpensDecoyAlbums(const Passcodes& passcodes) const;
    void unlock(const Passcodes& passcodes);

    void fill(SelaShareExtensionAlbumCell& cell, const IndexPath& indexPath, const SharedAlbum& album);
    void setAccessibility(SelaShareExtensionAlbumCell& cell, const IndexPath& indexPath,
                          const SharedAlbum& album);
    void showCover(SelaShareExtensionAlbumCell& cell, const SharedAlbum& album);
    void loadCoversLater();
    void loadNextCover();
    void showChildAlbums(int section, const SharedAlbum& album);
    void toggleChildren(int section);

    PasscodeCard card_;
    PasscodeKeypad keypad_;
    UITableView tableView_{"tableView"};
    UILabel launchMainAppLabel_{"launchMainAppLabel"}; ///< or why there is neither keypad nor table yet
    AlbumTree albums_;
    Secret currentPassword_;
    bool isVaultBusy_ = false; ///< nothing can be read at this moment
    UIButton* keyTouchedMeanwhile_ = nullptr;
    std::weak_ptr<SelaShareExtensionAlbumsVcDelegate> delegate_;
    std::shared_ptr<AlbumCovers> covers_ = std::make_shared<AlbumCovers>();
};

} // namespace sela
