#pragma once

#include "platform/uikit/UIActivityIndicatorView.h"
#include "platform/uikit/UIButton.h"
#include "platform/uikit/UIImageView.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UITableView.h"
#include "platform/uikit/UIViewController.h"

#include <array>

namespace sela {

/// A screen of 375 by 667 points with one of everything that can be drawn, for pictures to compare.
class GalleryController : public UIViewController, public UITableViewDataSource, public UITableViewDelegate {
public:
    void viewDidLoad() override;

    int numberOfRows(UITableView&, int) override { return 20; }
    UITableViewCell& cellForRow(UITableView& tableView, const IndexPath& indexPath) override;

    /// A picture of coloured stripes and a disc.
    static UIImage photo(int width, int height, int hue);

    UIButton addButton;
    UITableView tableView;

private:
    void buildCard();
    void buildThumbnails();
    void buildButtons();
    void buildKeypad();
    void buildTexts();
    void buildEffects();

    UIView card;
    UILabel titleLabel;
    UIButton albumButton;
    UIImageView disclosureIcon;
    std::array<UIView, 3> frames;
    std::array<UIImageView, 3> thumbnails;
    UIButton cancelButton;
    UIView panel;
    std::array<UIView, 4> dots;
    std::array<UIButton, 3> keys;
    UIActivityIndicatorView spinner;
    UILabel paragraph;
    UILabel shrunken;
    UILabel languages;
    UIView group;
    std::array<UIView, 2> discs;
    UIView turned;
    UIImageView stencil;
};

} // namespace sela
