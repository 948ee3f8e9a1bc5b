#pragma once

#include "host/FontCache.h"
#include "platform/uikit/Geometry.h"
#include "platform/uikit/NSAttributedString.h"
#include "platform/uikit/UILabel.h"

#include <QTextLayout>
#include <QTextOption>

#include <memory>
#include <vector>

class QPainter;

namespace sela {

/// Attributed text broken into lines and cut off with an ellipsis, ready to be measured and drawn. Main
/// thread only.
class TextLayout {
public:
    /// Breaks `text`, whose runs have fonts, at `width` points (infinite: only at line ends in the text) into
    /// at most `maximumLines` lines (0: any number); when there can be one line only, a run that gives way is
    /// cut first. Colours are taken in the appearance `traits`; a run without one is black.
    TextLayout(const NSAttributedString& text, double width, int maximumLines,
               const UITraitCollection& traits, FontCache& fonts);

    /// The size of the lines together, in points; 0 by 0 without text.
    CGSize size() const { return size_; }
    int lineCount() const { return static_cast<int>(lines_.size()); }

    /// Draws the lines centred vertically in `bounds`; `alignment` is not natural.
    void draw(QPainter& painter, const CGRect& bounds, NSTextAlignment alignment) const;

private:
    using Formats = QList<QTextLayout::FormatRange>;

    void addText(const NSAttributedString& text, const UITraitCollection& traits, FontCache& fonts);
    void shortenWhatGivesWay(const NSAttributedString& text, double width);
    void breakLines(double width, int maximumLines);
    void truncateFrom(int start, double width);
    std::unique_ptr<QTextLayout> layOutLine(const QString& text, const Formats& formats, double width,
                                            QTextOption::WrapMode wrapMode) const;
    Formats formatsFrom(int start, int length) const;

    QString text_;
    Formats formats_;
    QTextLayout whole_;
    std::unique_ptr<QTextLayout> truncated_;
    std::vector<QTextLine> lines_;
    CGSize size_;
};

} // namespace sela
