#include "host/TextLayout.h"

#include "host/QtConversions.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace sela {

namespace {

/// Wider than any text, yet within the range of Qt's fixed-point lengths.
constexpr double unlimited = 1'000'000;

/// Of a text that is cut off, at most this many characters are examined; more never fit into a line.
constexpr int longestTruncatedLine = 1'000;

/// Tolerance for the rounding of laid-out widths.
constexpr double tolerance = 0.01;

QTextOption textOption(QTextOption::WrapMode wrapMode) {
    QTextOption option;
    option.setWrapMode(wrapMode);
    option.setUseDesignMetrics(true);
    return option;
}

} // namespace

TextLayout::TextLayout(const NSAttributedString& text, double width, int maximumLines,
                       const UITraitCollection& traits, FontCache& fonts) {
    addText(text, traits, fonts);
    if (!text_.isEmpty() && maximumLines == 1)
        shortenWhatGivesWay(text, width + tolerance);
    if (!text_.isEmpty())
        breakLines(std::clamp(width + tolerance, 0.0, unlimited), maximumLines);
    for (const QTextLine& line : lines_) {
        size_.width = std::max(size_.width, line.naturalTextWidth());
        size_.height += line.height();
    }
}

void TextLayout::addText(const NSAttributedString& text, const UITraitCollection& traits, FontCache& fonts) {
    for (const NSAttributedString::Run& run : text.runs()) {
        QTextLayout::FormatRange range;
        range.start = static_cast<int>(text_.size());
        text_ += QString::fromUtf8(run.text.data(), static_cast<qsizetype>(run.text.size()));
        range.length = static_cast<int>(text_.size()) - range.start;
        if (run.attributes.font)
            range.format.setFont(fonts.font(*run.attributes.font));
        const UIColor color = run.attributes.foregroundColor.value_or(UIColor::black());
        range.format.setForeground(toQt(color.resolve(traits)));
        formats_.append(range);
    }
    text_.replace(QLatin1Char('\n'), QChar(QChar::LineSeparator));
}

/// Cuts the middle of the first run that gives way by as much as the line is too long, down to an ellipsis.
void TextLayout::shortenWhatGivesWay(const NSAttributedString& text, double width) {
    const auto run = std::ranges::find_if(
        text.runs(), [](const NSAttributedString::Run& each) { return each.attributes.givesWay; });
    if (run == text.runs().end())
        return;
    const auto widthOf = [&](const QString& part, const Formats& formats) {
        whole_.setFont(formats.front().format.font());
        return layOutLine(part, formats, unlimited, QTextOption::NoWrap)->lineAt(0).naturalTextWidth();
    };
    const double excess = widthOf(text_, formats_) - width;
    if (excess <= 0)
        return;
    const qsizetype index = run - text.runs().begin();
    const QTextLayout::FormatRange range = formats_[index];
    const QString part = text_.mid(range.start, range.length);
    const double room = widthOf(part, formatsFrom(range.start, range.length)) - excess;
    QString shown = QFontMetricsF(range.format.font()).elidedText(part, Qt::ElideMiddle, std::max(room, 0.0));
    if (shown.isEmpty())
        shown = QChar(0x2026);
    text_.replace(range.start, range.length, shown);
    const int shorter = range.length - static_cast<int>(shown.size());
    formats_[index].length -= shorter;
    for (qsizetype later = index + 1; later < formats_.size(); ++later)
        formats_[later].start -= shorter;
}

void TextLayout::breakLines(double width, int maximumLines) {
    whole_.setText(text_);
    whole_.setFont(formats_.front().format.font());
    whole_.setFormats(formats_);
    whole_.setTextOption(textOption(QTextOption::WrapAtWordBoundaryOrAnywhere));
    whole_.setCacheEnabled(true);
    whole_.beginLayout();
    for (QTextLine line = whole_.createLine(); line.isValid(); line = whole_.createLine()) {
        line.setLineWidth(width);
        lines_.push_back(line);
        if (maximumLines > 0 && lineCount() == maximumLines)
            break;
    }
    whole_.endLayout();
    const QTextLine& last = lines_.back();
    const bool isCut = last.textStart() + last.textLength() < text_.size();
    const bool isTooWide = maximumLines > 0 && last.naturalTextWidth() > width;
    if (isCut || isTooWide)
        truncateFrom(last.textStart(), width);
}

/// Replaces the last line by one that starts at `start`, fills the width and ends in an ellipsis.
void TextLayout::truncateFrom(int start, double width) {
    QString rest = text_.mid(start, longestTruncatedLine);
    if (const qsizetype lineEnd = rest.indexOf(QChar(QChar::LineSeparator)); lineEnd >= 0)
        rest.truncate(lineEnd);
    // The first characters in reading order are kept, wherever they are in the line.
    const std::unique_ptr<QTextLayout> full =
        layOutLine(rest, formatsFrom(start, static_cast<int>(rest.size())), width, QTextOption::WrapAnywhere);
    int length = full->lineAt(0).textLength();
    while (true) {
        QString shown = rest.left(length);
        while (shown.endsWith(QLatin1Char(' ')))
            shown.chop(1);
        Formats formats = formatsFrom(start, static_cast<int>(shown.size()));
        if (formats.isEmpty())
            formats = formatsFrom(start, 1);
        formats.back().length = static_cast<int>(shown.size()) + 1 - formats.back().start;
        truncated_ = layOutLine(shown + QChar(0x2026), formats, unlimited, QTextOption::NoWrap);
        if (length <= 0 || truncated_->lineAt(0).naturalTextWidth() <= width)
            break;
        length = full->previousCursorPosition(length);
    }
    lines_.back() = truncated_->lineAt(0);
}

/// The first line of `text` when lines are broken at `width`.
std::unique_ptr<QTextLayout> TextLayout::layOutLine(const QString& text, const Formats& formats, double width,
                                                    QTextOption::WrapMode wrapMode) const {
    auto layout = std::make_unique<QTextLayout>(text, whole_.font());
    layout->setFormats(formats);
    layout->setTextOption(textOption(wrapMode));
    layout->setCacheEnabled(true);
    layout->beginLayout();
    QTextLine line = layout->createLine();
    if (line.isValid())
        line.setLineWidth(width);
    layout->endLayout();
    return layout;
}

/// The formats of a stretch of the text, counted from its start.
TextLayout::Formats TextLayout::formatsFrom(int start, int length) const {
    Formats formats;
    for (QTextLayout::FormatRange range : formats_) {
        const int begin = std::max(range.start, start);
        const int end = std::min(range.start + range.length, start + length);
        if (begin >= end)
            continue;
        range.start = begin - start;
        range.length = end - begin;
        formats.append(range);
    }
    return formats;
}

void TextLayout::draw(QPainter& painter, const CGRect& bounds, NSTextAlignment alignment) const {
    double top = bounds.midY() - size_.height / 2;
    for (const QTextLine& line : lines_) {
        const double slack = bounds.size.width - line.naturalTextWidth();
        double left = bounds.minX();
        if (alignment == NSTextAlignment::center)
            left += slack / 2;
        else if (alignment == NSTextAlignment::right)
            left += slack;
        line.draw(&painter, QPointF(left, top) - line.position());
        top += line.height();
    }
}

} // namespace sela
