#pragma once

#include "platform/uikit/UIImageView.h"
#include "platform/uikit/UILabel.h"

#include <string_view>

namespace sela {

/// A sheet of paper that says what kind of file it stands for, in place of a picture of the file. Main thread
/// only.
class DocumentSheet : public UIView {
public:
    /// The size that it is drawn for, in design points.
    static constexpr CGSize designSize{92, 116};

    explicit DocumentSheet(std::string_view name);

    /// Shows the extension of a file's name in capitals; nothing when there is none, or it is no word.
    void setFileName(std::string_view fileName);

    void layoutSubviews() override;

private:
    UIImageView sheet_;
    UILabel extensionLabel_{"extensionLabel"};
};

} // namespace sela
