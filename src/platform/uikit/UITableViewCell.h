#pragma once

#include "platform/uikit/UIView.h"

#include <optional>
#include <string>

namespace sela {

/// A row of a table. Its views go into the content view, which fills it; a shade lies over the content while
/// the row is pressed or selected. Owned by its table; main thread only.
class UITableViewCell : public UIView {
public:
    enum class Style { normal };
    enum class SelectionStyle { none, gray };

    explicit UITableViewCell(Style style = Style::normal,
                             const std::optional<std::string>& reuseIdentifier = std::nullopt);
    explicit UITableViewCell(const NSCoder& coder);

    const std::optional<std::string>& reuseIdentifier() const { return reuseIdentifier_; }
    UIView& contentView() { return contentView_; }

    SelectionStyle selectionStyle() const { return selectionStyle_; }
    void setSelectionStyle(SelectionStyle style);

    /// Whether a thin line is drawn along the lower edge; chosen by the table.
    void setShowsSeparator(bool shows);

    bool isSelected() const { return selected_; }
    virtual void setSelected(bool selected, bool animated);
    bool isHighlighted() const { return highlighted_; }
    virtual void setHighlighted(bool highlighted, bool animated);

    /// Called after construction from an archive would have ended.
    virtual void awakeFromNib() {}

    /// Called before the cell is used for another row: neither selected nor pressed. A class that overrides
    /// it calls it.
    virtual void prepareForReuse();

    void layoutSubviews() override;

private:
    void build();
    void updateShade();

    std::optional<std::string> reuseIdentifier_;
    UIView contentView_{"contentView"};
    UIView selectionShade_;
    UIView separator_;
    SelectionStyle selectionStyle_ = SelectionStyle::gray;
    bool selected_ = false;
    bool highlighted_ = false;
};

} // namespace sela
