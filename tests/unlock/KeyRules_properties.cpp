#include "store/SharedFolder.h"
#include "unlock/SelaSharedAlbumPassCheck.h"
#include "unlock/UnlockTest.h"

#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

namespace sela {
namespace {

constexpr double shakeDuration = 0.6;

/// The vault's and the decoy's album, which identify the vault whose albums a picker loaded.
const std::vector<SharedAlbum> twoVaults = {album({"vault"}), album({"decoy"}, true)};

/// A passcode of a relevant length, with few different digits so that entries often nearly match.
rc::Gen<Passcode> somePasscode() {
    const auto digits =
        rc::gen::mapcat(rc::gen::element<std::size_t>(0, 1, 4, 4, 5, 6, 6, 7), [](std::size_t n) {
            return rc::gen::container<std::string>(n, rc::gen::element('1', '2'));
        });
    return rc::gen::weightedOneOf<Passcode>(
        {{3, rc::gen::map(digits, [](const std::string& text) { return Passcode(text); })},
         {1, rc::gen::just(Passcode())}});
}

/// A digit to tap: mostly the next one of a code, so that codes are completed.
int someDigit(const std::string& entry, const std::vector<Passcode>& codes) {
    const Passcode code = *rc::gen::elementOf(codes);
    if (code && entry.size() < code->size() && *rc::gen::inRange(0, 4) > 0)
        return (*code)[entry.size()] - '0';
    return *rc::gen::inRange(0, 3);
}

/// The expected behaviour of a picker, as a table of cases rather than in the way of the screen.
struct PickerModel {
    Passcode vault;
    Passcode decoy;
    std::string entry;
    double shakesUntil = -1;
    bool keypadShown = true;
    std::string albums = "vault";
    std::vector<bool> modes;

    bool decoyStands() const {
        const bool usualLength = vault && (vault->size() == 4 || vault->size() == 6);
        return usualLength && decoy && *decoy == entry && *vault != entry;
    }

    void open() {
        albums = decoyStands() ? "decoy" : "vault";
        look();
    }

    void look() {
        const bool open = !entry.empty() && (entry == vault || entry == decoy);
        keypadShown = vault && !vault->empty() && !open;
    }

    void tap(int digit, double now) {
        if (now < shakesUntil)
            return;
        const bool stood = decoyStands();
        const std::size_t room = vault ? vault->size() : 0;
        if (entry.size() < room)
            entry += static_cast<char>('0' + digit);
        if (entry == vault || entry == decoy) {
            const bool byVault = entry == vault;
            albums = decoyStands() ? "decoy" : "vault";
            look();
            entry.clear();
            if (byVault == stood)
                modes.push_back(!byVault);
            return;
        }
        look();
        if (room > 0 && entry.size() >= room)
            shakesUntil = now + shakeDuration;
    }

    void timePasses(double now) {
        if (shakesUntil >= 0 && now >= shakesUntil) {
            shakesUntil = -1;
            entry.clear();
            look();
        }
    }
};

class KeyRules : public UnlockTest {
protected:
    void TestBody() override {}

    /// Moves the clock, mostly by little, sometimes to just before or at the end of a shake.
    void passTime() {
        loop_.advance(*rc::gen::element(0.0, 0.125, 0.25, 0.5, shakeDuration));
        loop_.runPending();
    }
};

RC_GTEST_FIXTURE_PROP(KeyRules, ThePickerKeepsItsRuleUnderRandomTaps, ()) {
    PickerModel model;
    model.vault = *somePasscode();
    model.decoy = *rc::gen::oneOf(somePasscode(), rc::gen::just(model.vault));
    publishAlbums(twoVaults);
    publishPasscode(model.vault);
    publishDecoyPasscode(model.decoy);
    openPicker();
    model.open();
    const int steps = *rc::gen::inRange(1, 60);
    for (int step = 0; step < steps; ++step) {
        switch (*rc::gen::inRange(0, 40)) {
        case 0:
            publishPasscode(model.vault = *somePasscode());
            break;
        case 1:
            publishDecoyPasscode(model.decoy =
                                     *rc::gen::oneOf(somePasscode(), rc::gen::just(Passcode(model.entry))));
            break;
        case 2:
        case 3:
        case 4:
        case 5:
        case 6:
            passTime();
            model.timePasses(loop_.now());
            break;
        default: {
            // Also while the keypad is hidden: the rule does not depend on that.
            const int digit = someDigit(model.entry, {model.vault, model.decoy});
            picker_->onKeyTouched(button("button" + std::to_string(digit)));
            model.tap(digit, loop_.now());
        }
        }
        RC_ASSERT(isShown("keypadView") == model.keypadShown);
        RC_ASSERT(opener_->modes == model.modes);
        RC_ASSERT(picker_->albums().parentAlbums().size() == 1u);
        RC_ASSERT(picker_->albums().parentAlbums()[0].namePath[0] == model.albums);
        if (model.keypadShown) {
            const auto dots = view("indicatorContainer").subviews().size();
            RC_ASSERT(litDots() == static_cast<int>(std::min(model.entry.size(), dots)));
        }
    }
}

} // namespace
} // namespace sela
