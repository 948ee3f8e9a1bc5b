#include "host/GalleryController.h"

#include <QImage>
#include <QLinearGradient>
#include <QPainter>

#include <numbers>

namespace sela {

namespace {

/// The row of the gallery's table: a label in a cell.
class GalleryCell : public UITableViewCell {
public:
    GalleryCell(Style style, const std::optional<std::string>& reuseIdentifier)
        : UITableViewCell(style, reuseIdentifier), label({14, 0, 250, 44}) {
        label.setTextColor(UIColor::named("AppText"));
        contentView().addSubview(label);
    }

    UILabel label;
};

} // namespace

UIImage GalleryController::photo(int width, int height, int hue) {
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
    PixelBuffer pixels{width, height, {image.constBits(), image.constBits() + image.sizeInBytes()}};
    return UIImage::fromPixels(std::move(pixels));
}

void GalleryController::viewDidLoad() {
    UIViewController::viewDidLoad();
    view().setBackgroundColor(UIColor(0, 0, 0, 0.5));
    buildCard();
    buildThumbnails();
    buildButtons();
    buildKeypad();
    buildTexts();
    buildEffects();
}

void GalleryController::buildCard() {
    card.setFrame({27.5, 20, 320, 290});
    card.setBackgroundColor(UIColor::named("AppCard"));
    card.layer().setCornerRadius(13);
    card.setClipsToBounds(true);
    view().addSubview(card);

    titleLabel.setFrame({20, 8, 280, 46});
    titleLabel.setText("Sela");
    titleLabel.setFont(UIFont::boldSystemFont(20));
    titleLabel.setTextColor(UIColor::named("AppTint"));
    card.addSubview(titleLabel);

    const NSAttributedString::Attributes plain{UIColor::named("AppTextSecond"), UIFont::systemFont(14)};
    const NSAttributedString::Attributes highlight{UIColor::named("AppTint"), UIFont::systemFont(14)};
    albumButton.setAttributedTitle(NSAttributedString("Add %@ files to %@", plain)
                                       .format({{"12", highlight}, {"Holidays/Trips", highlight}}));
    albumButton.setContentHorizontalAlignment(UIButton::ContentHorizontalAlignment::left);
    albumButton.setFrame({20, 54, 270, 32});
    card.addSubview(albumButton);

    disclosureIcon.setImage(UIImage::named("Disclosure"));
    disclosureIcon.setFrame({292, 63.5, 8, 13});
    card.addSubview(disclosureIcon);
}

void GalleryController::buildThumbnails() {
    constexpr std::array<CGSize, 3> sizes{{{178, 100}, {142, 100}, {113, 100}}};
    for (std::size_t back = frames.size(); back-- > 0;) {
        UIView& frame = frames[back];
        const CGSize size = sizes[back];
        frame.setFrame(
            {160 - size.width / 2, 118 - 12.0 * static_cast<double>(back), size.width, size.height});
        frame.layer().setShadowOpacity(1);
        frame.layer().setShadowColor(UIColor(0, 0, 0, 0.5));
        frame.layer().setShadowOffset({0, 0});
        frame.layer().setShadowRadius(2);
        thumbnails[back].setFrame(frame.bounds());
        thumbnails[back].setImage(photo(300, 400, 200 - 70 * static_cast<int>(back)));
        thumbnails[back].setContentMode(UIView::ContentMode::scaleAspectFill);
        thumbnails[back].layer().setCornerRadius(10);
        thumbnails[back].setClipsToBounds(true);
        frame.addSubview(thumbnails[back]);
        card.addSubview(frame);
    }
}

void GalleryController::buildButtons() {
    cancelButton.setTitle("Cancel");
    cancelButton.setTitleColor(UIColor::named("AlertButtonDefault"));
    cancelButton.layer().setBorderColor(UIColor::named("AlertButtonDefault"));
    cancelButton.layer().setBorderWidth(1);
    cancelButton.setFrame({35, 236, 110, 40});
    addButton.setTitle("Add");
    addButton.setTitleColor(UIColor::named("TintButtonText"));
    addButton.setBackgroundColor(UIColor::named("AppTint"));
    addButton.setClipsToBounds(true);
    addButton.setFrame({175, 236, 110, 40});
    for (UIButton* const button : {&cancelButton, &addButton}) {
        button->titleLabel().setFont(UIFont::systemFont(16));
        button->layer().setCornerRadius(20);
        card.addSubview(*button);
    }

    panel.setFrame({27.5, 326, 320, 325});
    panel.setBackgroundColor(UIColor::named("AppCard"));
    panel.layer().setCornerRadius(13);
    panel.setClipsToBounds(true);
    view().addSubview(panel);
}

void GalleryController::buildKeypad() {
    for (std::size_t index = 0; index < dots.size(); ++index) {
        dots[index].setFrame({20 + 39.0 * static_cast<double>(index), 18, 15, 15});
        dots[index].setBackgroundColor(UIColor::named("AppText"));
        dots[index].layer().setCornerRadius(7.5);
        dots[index].setHidden(index == 3);
        panel.addSubview(dots[index]);
    }
    for (std::size_t index = 0; index < keys.size(); ++index) {
        keys[index].setTitle(std::to_string(7 + index));
        keys[index].setTitleColor(UIColor::named("AppText"));
        keys[index].titleLabel().setFont(UIFont::named("Roboto-Light", 28));
        keys[index].setFrame({10 + 60.0 * static_cast<double>(index), 44, 60, 44});
        panel.addSubview(keys[index]);
    }
    spinner.setFrame({238, 32, 20, 20});
    spinner.setTransform(CGAffineTransform::scale(2.2, 2.2));
    spinner.startAnimating();
    panel.addSubview(spinner);
}

void GalleryController::buildTexts() {
    paragraph.setFrame({14, 92, 180, 60});
    paragraph.setNumberOfLines(3);
    paragraph.setText("Lines are broken between words, and what does not fit into the last of them is "
                      "cut off with an ellipsis.");
    paragraph.setFont(UIFont::systemFont(14));
    shrunken.setFrame({206, 92, 100, 20});
    shrunken.setText("Shrunk until it fits");
    shrunken.setAdjustsFontSizeToFitWidth(true);
    shrunken.setMinimumScaleFactor(0.5);
    languages.setFrame({206, 112, 100, 50});
    languages.setNumberOfLines(2);
    languages.setTextAlignment(NSTextAlignment::center);
    languages.setText("写真を追加\nإضافة ملفات");
    languages.setFont(UIFont::systemFont(14, UIFont::Weight::semibold));
    for (UILabel* const label : {&paragraph, &shrunken, &languages}) {
        label->setTextColor(UIColor::named("AppText"));
        panel.addSubview(*label);
    }

    tableView.setFrame({0, 222, 320, 103});
    tableView.setBackgroundColor(UIColor::named("AppCard"));
    tableView.registerClass<GalleryCell>("GalleryCell");
    tableView.setDataSource(this);
    tableView.setDelegate(this);
    panel.addSubview(tableView);
}

void GalleryController::buildEffects() {
    group.setFrame({14, 164, 80, 46});
    group.setAlpha(0.5);
    for (std::size_t index = 0; index < discs.size(); ++index) {
        discs[index].setFrame({26.0 * static_cast<double>(index), 0, 46, 46});
        discs[index].layer().setCornerRadius(23);
        discs[index].setBackgroundColor(index == 0 ? UIColor::systemBlue() : UIColor::named("AppTint"));
        group.addSubview(discs[index]);
    }
    panel.addSubview(group);

    turned.setFrame({122, 167, 60, 40});
    turned.setBackgroundColor(UIColor(0.95, 0.6, 0.2, 1));
    turned.layer().setCornerRadius(8);
    turned.layer().setBorderWidth(2);
    turned.layer().setBorderColor(UIColor::named("AppText"));
    turned.layer().setShadowOpacity(0.6);
    turned.layer().setShadowOffset({0, 3});
    turned.layer().setShadowRadius(4);
    turned.setTransform(CGAffineTransform::rotation(std::numbers::pi / 9));
    panel.addSubview(turned);

    stencil.setImage(UIImage::named("Disclosure"));
    stencil.setAlwaysDrawsTemplate(true);
    stencil.setTintColor(UIColor(0.85, 0.15, 0.25, 1));
    stencil.setContentMode(UIView::ContentMode::scaleAspectFit);
    stencil.setFrame({210, 164, 46, 46});
    panel.addSubview(stencil);
}

UITableViewCell& GalleryController::cellForRow(UITableView& table, const IndexPath& indexPath) {
    auto& cell = static_cast<GalleryCell&>(table.dequeueReusableCell("GalleryCell", indexPath));
    cell.label.setText("Row " + std::to_string(indexPath.row + 1));
    return cell;
}

} // namespace sela
