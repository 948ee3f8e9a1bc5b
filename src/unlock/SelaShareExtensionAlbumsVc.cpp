#include "unlock/SelaShareExtensionAlbumsVc.h"

#include "platform/foundation/Bundle.h"
#include "platform/foundation/DispatchQueue.h"
#include "platform/foundation/FatalError.h"
#include "platform/foundation/UTF8.h"
#include "platform/uikit/UINavigationController.h"
#include "store/SharedAlbumManager.h"
#include "ui/SelaShareExtensionAlbumCell.h"
#include "unlock/SelaShareExtensionAlbumsVcDelegate.h"
#include "unlock/SelaSharedAlbumPassCheck.h"

#include <numbers>

namespace sela {

namespace {

/// Seconds between two attempts to read settings that another program keeps locked.
constexpr double vaultPollInterval = 0.25;

constexpr const char* launchMessage = "Please launch the main Sela app first.";

constexpr const char* cellIdentifier = "SelaShareExtensionAlbumCell";

std::string localized(std::string_view key) {
    return Bundle::main().localizedString(key);
}

} // namespace

SelaShareExtensionAlbumsVc::SelaShareExtensionAlbumsVc() = default;

SelaShareExtensionAlbumsVc::SelaShareExtensionAlbumsVc(const NSCoder& coder) : UIViewController(coder) {
    fatalError("init(coder:) has not been implemented");
}

void SelaShareExtensionAlbumsVc::viewDidLoad() {
    UIViewController::viewDidLoad();
    const bool isBusy = findsVaultBusy();
    buildViews();
    if (!isBusy)
        loadAlbums(Passcodes::read());
    styleTable();
    launchMainAppLabel_.setText(localized(launchMessage));
    refresh();
}

/// Whether another program keeps the settings locked; if so, the screen waits for it without blocking.
bool SelaShareExtensionAlbumsVc::findsVaultBusy() {
    if (!isVaultBusy_ && SharedAlbumManager::isBusy(UserDefaults::shortPatience)) {
        isVaultBusy_ = true;
        waitForVault();
    }
    return isVaultBusy_;
}

void SelaShareExtensionAlbumsVc::waitForVault() {
    DispatchQueue::main().asyncAfter(vaultPollInterval, [weak = weak_from_this()] {
        const std::shared_ptr<UIViewController> alive = weak.lock();
        if (!alive)
            return;
        auto& self = static_cast<SelaShareExtensionAlbumsVc&>(*alive);
        if (SharedAlbumManager::isBusy(UserDefaults::Patience::zero()))
            self.waitForVault();
        else
            self.onVaultFree();
    });
}

void SelaShareExtensionAlbumsVc::onVaultFree() {
    isVaultBusy_ = false;
    launchMainAppLabel_.setText(localized(launchMessage));
    keypad_.setPasscodeLength(passcodeLength());
    if (currentPassword_.empty()) {
        loadAlbums(Passcodes::read());
        tableView_.reloadData();
    }
    refresh();
    if (UIButton* const key = std::exchange(keyTouchedMeanwhile_, nullptr))
        onKeyTouched(*key);
}

std::size_t SelaShareExtensionAlbumsVc::passcodeLength() const {
    if (isVaultBusy_)
        return 0;
    return characterCount(SharedAlbumManager::sharedPassword().value_or(Secret()).exposed());
}

void SelaShareExtensionAlbumsVc::styleTable() {
    tableView_.setBackgroundColor(UIColor::named("AppCard"));
    tableView_.setAccessibilityLabel(localized("Pick Album"));
    tableView_.setSeparatorStyle(UITableView::SeparatorStyle::none);
    tableView_.registerClass<SelaShareExtensionAlbumCell>(cellIdentifier);
    tableView_.setDataSource(this);
    tableView_.setDelegate(this);
}

SelaShareExtensionAlbumsVc::Passcodes SelaShareExtensionAlbumsVc::Passcodes::read() {
    return {SharedAlbumManager::sharedPassword(), SharedAlbumManager::sharedFakePassword()};
}

void SelaShareExtensionAlbumsVc::loadAlbums(const Passcodes& passcodes) {
    auto catalogue = SharedAlbumManager::getAlbums();
    albums_.load(std::move(catalogue), entryOpensDecoyAlbums(passcodes));
}

/// The decoy albums are shown only if the passcode has one of the vault's two lengths, although a decoy code
/// unlocks with any. Where both codes are the same the vault's albums are opened.
bool SelaShareExtensionAlbumsVc::entryOpensDecoyAlbums(const Passcodes& passcodes) const {
    const std::size_t length = characterCount(passcodes.vault.value_or(Secret()).exposed());
    return (length == 4 || length == 6) && currentPassword_ != passcodes.vault &&
           currentPassword_ == passcodes.decoy;
}

void SelaShareExtensionAlbumsVc::refresh() {
    if (findsVaultBusy())
        showVaultBusy();
    else
        refresh(Passcodes::read());
}

void SelaShareExtensionAlbumsVc::refresh(const Passcodes& passcodes) {
    if (!passcodes.vault || albums_.sharedAlbumManagerAlbumNil()) {
        // What could not be read may be there all the same.
        if (findsVaultBusy())
            showVaultBusy();
        else
            showMessage();
    } else if (passcodes.vault->empty()) {
        showAlbumTable();
    } else {
        const bool matches = currentPassword_ == *passcodes.vault || currentPassword_ == passcodes.decoy;
        if (!currentPassword_.empty() && matches)
            showAlbumTable();
        else
            showKeypad();
        keypad_.showEntry(currentPassword_.size());
    }
}

void SelaShareExtensionAlbumsVc::showVaultBusy() {
    launchMainAppLabel_.setText(localized("The vault is busy. One moment, please."));
    showMessage();
}

void SelaShareExtensionAlbumsVc::showMessage() {
    card_.setTitle("Pick Album");
    keypad_.setHidden(true);
    tableView_.setHidden(true);
    launchMainAppLabel_.setHidden(false);
}

void SelaShareExtensionAlbumsVc::showAlbumTable() {
    card_.setTitle("Pick Album");
    keypad_.setHidden(true);
    tableView_.setHidden(false);
    launchMainAppLabel_.setHidden(true);
    loadCoversLater();
}

void SelaShareExtensionAlbumsVc::showKeypad() {
    card_.setTitle("Input Passcode");
    keypad_.setHidden(false);
    tableView_.setHidden(true);
    launchMainAppLabel_.setHidden(true);
}

void SelaShareExtensionAlbumsVc::onKeyTouched(UIButton& button) {
    if (keypad_.isShaking())
        return;
    if (findsVaultBusy()) {
        keyTouchedMeanwhile_ = &button;
        return showVaultBusy();
    }
    // Read once for all that follows, which must not differ about what the entry opens.
    const Passcodes passcodes = Passcodes::read();
    const std::size_t length = characterCount(passcodes.vault.value_or(Secret()).exposed());
    const bool wasDecoy = entryOpensDecoyAlbums(passcodes);
    if (currentPassword_.size() < length)
        currentPassword_.append(static_cast<char>('0' + button.tag()));

    // The delegate is called for a change only.
    if (currentPassword_ == passcodes.vault) {
        unlock(passcodes);
        if (const auto delegate = delegate_.lock(); delegate && wasDecoy)
            delegate->setFakePasswordMode(false);
    } else if (currentPassword_ == passcodes.decoy) {
        unlock(passcodes);
        if (const auto delegate = delegate_.lock(); delegate && !wasDecoy)
            delegate->setFakePasswordMode(true);
    } else {
        refresh(passcodes);
        if (length >= 1 && currentPassword_.size() >= length)
            keypad_.shake(weak_from_this(), [this] { clearEntry(); });
    }
}

void SelaShareExtensionAlbumsVc::clearEntry() {
    currentPassword_.clear();
    refresh();
}

/// The order matters: which albums are loaded and what is shown both follow from the entry.
void SelaShareExtensionAlbumsVc::unlock(const Passcodes& passcodes) {
    loadAlbums(passcodes);
    tableView_.reloadData();
    refresh(passcodes);
    currentPassword_.clear();
}

void SelaShareExtensionAlbumsVc::onBackButtonTouched(UIButton&) {
    if (UINavigationController* const navigation = navigationController())
        navigation->popViewController(true);
}

int SelaShareExtensionAlbumsVc::numberOfSections(UITableView&) {
    return static_cast<int>(albums_.showAlbums().size());
}

int SelaShareExtensionAlbumsVc::numberOfRows(UITableView&, int section) {
    return static_cast<int>(albums_.showAlbums()[static_cast<std::size_t>(section)].size());
}

double SelaShareExtensionAlbumsVc::heightForRow(UITableView&, const IndexPath&) {
    return SelaShareExtensionAlbumCell::rowHeight;
}

UITableViewCell& SelaShareExtensionAlbumsVc::cellForRow(UITableView& tableView, const IndexPath& indexPath) {
    auto& cell =
        static_cast<SelaShareExtensionAlbumCell&>(tableView.dequeueReusableCell(cellIdentifier, indexPath));
    if (const SharedAlbum* const album = albums_.album(indexPath.section, indexPath.row)) {
        fill(cell, indexPath, *album);
    } else {
        cell.thumbnailView().setImage(std::nullopt);
        cell.titleLabel().setText("");
    }
    return cell;
}

void SelaShareExtensionAlbumsVc::fill(SelaShareExtensionAlbumCell& cell, const IndexPath& indexPath,
                                      const SharedAlbum& album) {
    AUIButton& showChildButton = cell.showChildButton();
    const int section = indexPath.section;
    const bool unfolds = indexPath.row == 0 && albums_.hasChildren(section);
    showChildButton.setHidden(!unfolds);
    if (unfolds)
        cell.layoutTitleWithShowChildButton();
    else
        cell.layoutTitleWithoutShowChildButton();
    if (indexPath.row == 0) {
        cell.layoutThumbnailOfParent();
        showChildButton.setCallback([this, section, album](AUIButton&) { showChildAlbums(section, album); });
        const bool unfolded = albums_.showChild()[static_cast<std::size_t>(section)];
        showChildButton.imageView().setTransform(unfolded ? CGAffineTransform::rotation(std::numbers::pi)
                                                          : CGAffineTransform{});
    } else {
        cell.layoutThumbnailOfChild();
    }
    showCover(cell, album);
    cell.lockIcon().setHidden(!album.password);
    if (!album.namePath.empty())
        cell.titleLabel().setText(album.namePath.back());
    setAccessibility(cell, indexPath, album);
}

/// The label of a row for a screen reader.
void SelaShareExtensionAlbumsVc::setAccessibility(SelaShareExtensionAlbumCell& cell,
                                                  const IndexPath& indexPath, const SharedAlbum& album) {
    std::string value = localized(album.password ? "Locked" : "Unlocked");
    auto status = AccessibilityExpandedStatus::unsupported;
    if (AUIButton& button = cell.showChildButton(); !button.isHidden()) {
        const bool unfolded = albums_.showChild()[static_cast<std::size_t>(indexPath.section)];
        const std::string folding = localized(unfolded ? "Unfolded" : "Folded");
        value += ", " + folding;
        status = unfolded ? AccessibilityExpandedStatus::expanded : AccessibilityExpandedStatus::collapsed;
        button.setAccessibilityLabel(localized("Child Albums"));
        button.setAccessibilityValue(folding);
        button.setAccessibilityExpandedStatus(status);
    }
    cell.setAccessibilityExpandedStatus(status);
    cell.setAccessibilityRole(AccessibilityRole::listItem);
    cell.setAccessibilityLabel(cell.titleLabel().text());
    cell.setAccessibilityValue(value);
}

/// A cover that is not decoded yet leaves its place empty until it is, so that no frame waits for it.
void SelaShareExtensionAlbumsVc::showCover(SelaShareExtensionAlbumCell& cell, const SharedAlbum& album) {
    if (album.password || !album.thumbNailName) {
        cell.thumbnailView().setImage(UIImage::named("EmptyFolder"));
    } else if (const AlbumCovers::Cover* const cover = covers_->cover(*album.thumbNailName)) {
        cell.thumbnailView().setImage(cover->image ? cover->image : UIImage::named("EmptyFolder"));
    } else {
        cell.thumbnailView().setImage(std::nullopt);
        loadCoversLater();
    }
}

/// Not while the table fills its rows: which of them are in view is known only afterwards.
void SelaShareExtensionAlbumsVc::loadCoversLater() {
    DispatchQueue::main().async([weak = weak_from_this()] {
        if (const std::shared_ptr<UIViewController> self = weak.lock())
            static_cast<SelaShareExtensionAlbumsVc&>(*self).loadNextCover();
    });
}

/// Decodes the first missing cover of the rows in view, and repeats once it has arrived.
void SelaShareExtensionAlbumsVc::loadNextCover() {
    if (covers_->isLoading() || tableView_.isHidden())
        return;
    for (const IndexPath& indexPath : tableView_.indexPathsForVisibleRows()) {
        const SharedAlbum* const album = albums_.album(indexPath.section, indexPath.row);
        auto* const cell = static_cast<SelaShareExtensionAlbumCell*>(tableView_.cellForRow(indexPath));
        if (!album || album->password || !album->thumbNailName || cell->thumbnailView().image())
            continue;
        if (!covers_->cover(*album->thumbNailName)) {
            covers_->load(*album->thumbNailName, [this] { loadNextCover(); });
            return;
        }
        showCover(*cell, *album);
    }
}

void SelaShareExtensionAlbumsVc::didSelectRow(UITableView&, const IndexPath& indexPath) {
    const SharedAlbum* const album = albums_.album(indexPath.section, indexPath.row);
    if (!album)
        return;
    if (const auto delegate = delegate_.lock())
        delegate->setSelectedAlbumName(album->namePath);
    if (const auto delegate = delegate_.lock())
        delegate->updateTitle();
    if (UINavigationController* const navigation = navigationController())
        navigation->popViewController(true);
}

void SelaShareExtensionAlbumsVc::showChildAlbums(int section, const SharedAlbum& album) {
    if (!album.password) {
        toggleChildren(section);
        return;
    }
    UINavigationController* const navigation = navigationController();
    if (!navigation)
        return;
    const auto passCheck =
        std::make_shared<SelaSharedAlbumPassCheck>(*album.password, album.namePath.front());
    passCheck->navigationItem().setLeftBarButtonItem(
        std::make_unique<UIBarButtonItem>(UIImage::named("Back"), passCheck.get(),
                                          static_cast<void (CommonUIViewController::*)(UIBarButtonItem&)>(
                                              &CommonUIViewController::onBackButtonTouched)));
    passCheck->setCallback([weak = weak_from_this(), section](std::optional<bool> unlocked) {
        const std::shared_ptr<UIViewController> alive = weak.lock();
        if (!alive || !unlocked.value_or(false))
            return;
        auto& self = static_cast<SelaShareExtensionAlbumsVc&>(*alive);
        self.albums_.clearPassword(section);
        self.toggleChildren(section);
    });
    navigation->pushViewController(passCheck, true);
}

void SelaShareExtensionAlbumsVc::toggleChildren(int section) {
    if (albums_.toggleChildren(section))
        tableView_.reloadSections({section});
}

} // namespace sela
