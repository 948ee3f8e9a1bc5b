#pragma once

#include "platform/uikit/UIActivityIndicatorView.h"
#include "platform/uikit/UIButton.h"
#include "platform/uikit/UIImageView.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UITableView.h"
#include "platform/uikit/UIViewController.h"

#include <QImage>
#include <QLinearGradient>
#include <QPainter>

#include <numbers>

namespace sela {

inline UIColor appText() {
    return UIColor::named("AppText");
}

inline UIColor appTint() {
    return UIColor::named("AppTint");
}

/// A picture of a gradient and a disc.
inline UIImage photo(int width, int height, int hue) {
    QImage image(width, height, QImage::Format_RGBA8888_Premultiplied);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient sky(0, 0, 0, height);
    sky.setColorAt(0, QColor::fromHsv(hue, 90, 250));
    sky.setColorAt(1, QColor::fromHsv((hue + 40) % 360, 200, 180));
    painter.fillRect(image.rect(), sky);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor::fromHsv((hue + 180) % 360, 60, 255));
    painter.drawEllipse(QPointF(width * 0.7, height * 0.3), height * 0.15, height * 0.15);
    painter.end();
    return UIImage::fromPixels({width, height, {image.constBits(), image.constBits() + image.sizeInBytes()}});
}

/// The row of the gallery's table: a label in a cell.
class GalleryCell : public UITableViewCell {
public:
    GalleryCell(Style style, const std::optional<std::string>& reuseIdentifier)
        : UITableViewCell(style, reuseIdentifier), label({14, 0, 250, 44}) {
        label.setTextColor(appText());
        contentView().addSubview(label);
    }

    UILabel label;
};

/// A screen of 375 by 667 points with one of everything that can be drawn, for pictures to compare.
class GalleryController : public UIViewController, public UITableViewDataSource {
public:
    void viewDidLoad() override {
        UIViewController::viewDidLoad();
        view().setBackgroundColor(UIColor(0, 0, 0, 0.5));
        UIView& card = addPanel({27.5, 20, 320, 290});
        addTitles(card);
        addThumbnails(card);
        addButtons(card);
        UIView& panel = addPanel({27.5, 326, 320, 325});
        addKeypad(panel);
        addTexts(panel);
        addTable(panel);
        addEffects(panel);
    }

    int numberOfRows(UITableView&, int) override { return 20; }

    UITableViewCell& cellForRow(UITableView& table, const IndexPath& indexPath) override {
        auto& cell = static_cast<GalleryCell&>(table.dequeueReusableCell("GalleryCell", indexPath));
        cell.label.setText("Row " + std::to_string(indexPath.row + 1));
        return cell;
    }

private:
    template<typename View = UIView>
    View& add(UIView& parent, const CGRect& frame) {
        auto view = std::make_unique<View>();
        View& added = *view;
        views_.push_back(std::move(view));
        added.setFrame(frame);
        parent.addSubview(added);
        return added;
    }

    UIView& addPanel(const CGRect& frame) {
        UIView& panel = add(view(), frame);
        panel.setBackgroundColor(UIColor::named("AppCard"));
        panel.layer().setCornerRadius(13);
        panel.setClipsToBounds(true);
        return panel;
    }

    UILabel& addText(UIView& parent, const CGRect& frame, const char* text, const UIFont& font, int lines) {
        auto& label = add<UILabel>(parent, frame);
        label.setText(text);
        label.setFont(font);
        label.setNumberOfLines(lines);
        label.setTextColor(appText());
        return label;
    }

    UIButton& addButton(UIView& parent, const CGRect& frame, const std::string& title, const UIFont& font,
                        const UIColor& color) {
        auto& button = add<UIButton>(parent, frame);
        button.setTitle(title);
        button.setTitleColor(color);
        button.titleLabel().setFont(font);
        return button;
    }

    void addTitles(UIView& card) {
        addText(card, {20, 8, 280, 46}, "Sela", UIFont::boldSystemFont(20), 1).setTextColor(appTint());
        const NSAttributedString::Attributes plain{UIColor::named("AppTextSecond"), UIFont::systemFont(14)};
        const NSAttributedString::Attributes highlight{appTint(), UIFont::systemFont(14)};
        auto& album = add<UIButton>(card, {20, 54, 270, 32});
        album.setAttributedTitle(NSAttributedString("Add %@ files to %@", plain)
                                     .format({{"12", highlight}, {"Holidays/Trips", highlight}}));
        album.setContentHorizontalAlignment(UIButton::ContentHorizontalAlignment::left);
        add<UIImageView>(card, {292, 63.5, 8, 13}).setImage(UIImage::named("Disclosure"));
    }

    void addThumbnails(UIView& card) {
        const double widths[] = {178, 142, 113};
        for (const int back : {2, 1, 0}) {
            UIView& frame = add(card, {160 - widths[back] / 2, 118 - 12.0 * back, widths[back], 100});
            frame.layer().setShadowOpacity(1);
            frame.layer().setShadowColor(UIColor(0, 0, 0, 0.5));
            frame.layer().setShadowOffset({0, 0});
            frame.layer().setShadowRadius(2);
            auto& thumbnail = add<UIImageView>(frame, frame.bounds());
            thumbnail.setImage(photo(300, 400, 200 - 70 * back));
            thumbnail.setContentMode(UIView::ContentMode::scaleAspectFill);
            thumbnail.layer().setCornerRadius(10);
            thumbnail.setClipsToBounds(true);
        }
    }

    void addButtons(UIView& card) {
        const UIFont font = UIFont::systemFont(16);
        const UIColor outline = UIColor::named("AlertButtonDefault");
        auto& cancel = addButton(card, {35, 236, 110, 40}, "Cancel", font, outline);
        cancel.layer().setBorderColor(outline);
        cancel.layer().setBorderWidth(1);
        cancel.layer().setCornerRadius(20);
        auto& filled = addButton(card, {175, 236, 110, 40}, "Add", font, UIColor::named("TintButtonText"));
        filled.setBackgroundColor(appTint());
        filled.setClipsToBounds(true);
        filled.layer().setCornerRadius(20);
    }

    void addKeypad(UIView& panel) {
        for (int index = 0; index < 4; ++index) {
            UIView& dot = add(panel, {20 + 39.0 * index, 18, 15, 15});
            dot.setBackgroundColor(appText());
            dot.layer().setCornerRadius(7.5);
            dot.setHidden(index == 3);
        }
        for (int index = 0; index < 3; ++index)
            addButton(panel, {10 + 60.0 * index, 44, 60, 44}, std::to_string(7 + index),
                      UIFont::named("Roboto-Light", 28), appText());
        auto& spinner = add<UIActivityIndicatorView>(panel, {238, 32, 20, 20});
        spinner.setTransform(CGAffineTransform::scale(2.2, 2.2));
        spinner.startAnimating();
    }

    void addTexts(UIView& panel) {
        addText(panel, {14, 92, 180, 60},
                "Lines are broken between words, and what does not fit into the last of them is cut off with "
                "an ellipsis.",
                UIFont::systemFont(14), 3);
        auto& shrunken =
            addText(panel, {206, 92, 100, 20}, "Shrunk until it fits", UIFont::systemFont(17), 1);
        shrunken.setAdjustsFontSizeToFitWidth(true);
        shrunken.setMinimumScaleFactor(0.5);
        addText(panel, {206, 112, 100, 50}, "写真を追加\nإضافة ملفات",
                UIFont::systemFont(14, UIFont::Weight::semibold), 2)
            .setTextAlignment(NSTextAlignment::center);
    }

    void addTable(UIView& panel) {
        auto& table = add<UITableView>(panel, {0, 222, 320, 103});
        table.setBackgroundColor(UIColor::named("AppCard"));
        table.registerClass<GalleryCell>("GalleryCell");
        table.setDataSource(this);
    }

    void addEffects(UIView& panel) {
        UIView& group = add(panel, {14, 164, 80, 46});
        group.setAlpha(0.5);
        for (int index = 0; index < 2; ++index) {
            UIView& disc = add(group, {26.0 * index, 0, 46, 46});
            disc.layer().setCornerRadius(23);
            disc.setBackgroundColor(index == 0 ? UIColor::systemBlue() : appTint());
        }

        UIView& turned = add(panel, {122, 167, 60, 40});
        turned.setBackgroundColor(UIColor(0.95, 0.6, 0.2, 1));
        turned.layer().setCornerRadius(8);
        turned.layer().setBorderWidth(2);
        turned.layer().setBorderColor(appText());
        turned.layer().setShadowOpacity(0.6);
        turned.layer().setShadowOffset({0, 3});
        turned.layer().setShadowRadius(4);
        turned.setTransform(CGAffineTransform::rotation(std::numbers::pi / 9));

        auto& stencil = add<UIImageView>(panel, {210, 164, 46, 46});
        stencil.setImage(UIImage::named("Disclosure"));
        stencil.setAlwaysDrawsTemplate(true);
        stencil.setTintColor(UIColor(0.85, 0.15, 0.25, 1));
        stencil.setContentMode(UIView::ContentMode::scaleAspectFit);
    }

    std::vector<std::unique_ptr<UIView>> views_;
};

} // namespace sela
