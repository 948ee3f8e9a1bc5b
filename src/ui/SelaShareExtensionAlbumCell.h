#pragma once

#include "platform/snapkit/ConstraintAttribute.h"
#include "platform/uikit/UIImageView.h"
#include "platform/uikit/UILabel.h"
#include "platform/uikit/UITableViewCell.h"
#include "ui/AUIButton.h"

#include <optional>
#include <string>

namespace sela {

/// A row of the album picker: a square thumbnail under a lock badge, the album's title, and a control that
/// opens the child albums. The picker fills the views and chooses the layouts; lengths are in points and not
/// scaled. Main thread only.
class SelaShareExtensionAlbumCell : public UITableViewCell {
public:
    /// Height of every row in points.
    static constexpr double rowHeight = 55;

    /// Laid out as a parent with the child control.
    explicit SelaShareExtensionAlbumCell(Style style,
                                         const std::optional<std::string>& reuseIdentifier = std::nullopt);

    /// Constructs the views but neither adds nor lays out any.
    explicit SelaShareExtensionAlbumCell(const NSCoder& coder);

    UIImageView& thumbnailView() { return thumbnailView_; }
    UILabel& titleLabel() { return titleLabel_; }

    /// As high as the row and as wide as it is high; takes taps even when the catalogue lacks its image.
    AUIButton& showChildButton() { return showChildButton_; }

    /// Covers the thumbnail exactly.
    UIImageView& lockIcon() { return lockIcon_; }

    /// The title ends at the child control, or at the trailing edge of the row.
    void layoutTitleWithShowChildButton();
    void layoutTitleWithoutShowChildButton();

    /// The thumbnail starts 30 points from the leading edge, or 48 in the row of a child album.
    void layoutThumbnailOfParent();
    void layoutThumbnailOfChild();

private:
    void layoutTitle(const ConstraintItem& end);
    void layoutThumbnail(double indentation);
    void layoutBadgeAndButton();
    void applyLooks();
    void showArrow();

    UIImageView thumbnailView_{"thumbnailView"};
    UILabel titleLabel_{"titleLabel"};
    AUIButton showChildButton_{"showChildButton"};
    UIImageView lockIcon_{"lockIcon", UIImage::named("AlbumLocked")};
};

} // namespace sela
