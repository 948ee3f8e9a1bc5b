#pragma once

#include "platform/foundation/Secret.h"
#include "ui/CommonUIViewController.h"
#include "unlock/PasscodeCard.h"
#include "unlock/PasscodeKeypad.h"

#include <optional>
#include <string>

namespace sela {

/// The screen that asks for an album's own password. Pushed onto a navigation controller with a `callback`,
/// it pops itself and reports true when the password was typed, or false when the user went back. The number
/// of attempts is not limited. Main thread only.
class SelaSharedAlbumPassCheck : public CommonUIViewController {
public:
    /// `checkPass` is the password to ask for, `subtitle` a text below the title.
    SelaSharedAlbumPassCheck(Secret checkPass, const std::string& subtitle);

    /// Construction from an archive is not supported: both stop the process.
    explicit SelaSharedAlbumPassCheck(const std::optional<std::string>& nibName);
    explicit SelaSharedAlbumPassCheck(const NSCoder& coder);

    void viewDidLoad() override;

    /// The action of the digit keys.
    void onKeyTouched(UIButton& button);

    /// The action of the back button in the card.
    using CommonUIViewController::onBackButtonTouched;
    void onBackButtonTouched(UIButton& button);

private:
    void layoutSubTitle(double scale);
    void refresh();
    void clearEntry();
    void finish(bool unlocked);

    PasscodeCard card_;
    UILabel subTitleLabel_{"subTitleLabel"};
    PasscodeKeypad keypad_;
    Secret currentPassword_;
    const Secret checkPass_;
};

} // namespace sela
