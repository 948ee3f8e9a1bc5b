#include "host/OffscreenEnvironment.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>

namespace sela {

namespace {

NSAttributedString inFont(std::string_view text, const UIFont& font) {
    return NSAttributedString(text, {.foregroundColor = std::nullopt, .font = font});
}

} // namespace

TEST(QtTextMeasurer, GivesSizesThatTheTextFitsInto) {
    const OffscreenEnvironment environment;
    const TextMeasurer& measurer = environment.measurer;
    const NSAttributedString text = inFont("Add 12 files to Holidays/Trips", UIFont::systemFont(15));
    EXPECT_EQ(measurer.size({}, TextMeasurer::unlimitedWidth, 0), CGSize());

    const CGSize natural = measurer.size(text, TextMeasurer::unlimitedWidth, 1);
    EXPECT_GT(natural.width, 150);
    EXPECT_LT(natural.width, 300);
    EXPECT_EQ(measurer.size(text, natural.width, 1), natural);
    EXPECT_EQ(environment.measurer.layout(text, natural.width, 0, UIUserInterfaceStyle::light)->lineCount(),
              1);

    const CGSize broken = measurer.size(text, 70, 0);
    EXPECT_LE(broken.width, 70);
    EXPECT_GE(broken.height, 3 * (natural.height - 1));
    const CGSize cut = measurer.size(text, 70, 2);
    EXPECT_LE(cut.width, 70);
    EXPECT_LT(cut.height, broken.height);
    EXPECT_GE(cut.height, 2 * (natural.height - 1));
}

TEST(QtTextMeasurer, CutsAnyTextOffWithinTheWidth) {
    const OffscreenEnvironment environment;
    const char* const texts[] = {"Unbreakablewordthatisfartoolongforthis", "a b c d e f g h i j k l m n o p",
                                 "写真とビデオを追加しています", "إضافة ملفات إلى الألبوم الافتراضي",
                                 "👍👍👍👍👍👍👍👍"};
    for (const char* const text : texts)
        for (const double width : {0.0, 1.0, 5.0, 20.0, 33.3, 60.0}) { // the first too little for an ellipsis
            const auto layout = environment.measurer.layout(inFont(text, UIFont::systemFont(14)), width, 1,
                                                            UIUserInterfaceStyle::light);
            EXPECT_EQ(layout->lineCount(), 1) << text;
            EXPECT_LE(layout->size().width, std::max(width, 20.0) + 0.02) << text;
            EXPECT_GT(layout->size().width, width < 20 ? -1 : 5) << text;
        }
}

/// Whichever way the text runs, its beginning stays: the names differ at their ends alone, and so far out
/// that the cut-off lines look the same.
TEST(QtTextMeasurer, CutsTheEndOffInTheOrderOfReading) {
    const OffscreenEnvironment environment;
    const auto picture = [&](const char* text) {
        QImage image(100, 30, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        QPainter painter(&image);
        environment.measurer.layout(inFont(text, UIFont::systemFont(14)), 100, 1, {})
            ->draw(painter, {0, 0, 100, 30}, NSTextAlignment::left);
        return image;
    };
    EXPECT_EQ(picture("عطلات الصيف في البحر الأبيض المتوسط"), picture("عطلات الصيف في البحر الأبيض الآخر"));
    EXPECT_NE(picture("عطلات الصيف في البحر الأبيض المتوسط"), picture("رحلات الصيف في البحر الأبيض المتوسط"));
    EXPECT_EQ(picture("صور Holidays in Rome and Naples"), picture("صور Holidays in Rome and Florence"));
}

TEST(QtTextMeasurer, CutsWhatGivesWayBeforeTheEnd) {
    const OffscreenEnvironment environment;
    const UIFont font = UIFont::systemFont(14);
    const NSAttributedString child = inFont("/Rome", font);
    NSAttributedString path("Holidays in a country far away",
                            {.foregroundColor = std::nullopt, .font = font, .givesWay = true});
    path.append(child);
    const auto drawn = [&](const NSAttributedString& text) {
        QImage image(120, 20, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        QPainter painter(&image);
        environment.measurer.layout(text, 120, 1, {})->draw(painter, {0, 0, 120, 20}, NSTextAlignment::right);
        return image;
    };
    const int width = static_cast<int>(environment.measurer.size(child, 120, 1).width) - 4;
    const QRect end(120 - width, 0, width, 20);
    EXPECT_EQ(drawn(path).copy(end), drawn(child).copy(end));
    EXPECT_LE(environment.measurer.size(path, 120, 1).width, 120);
}

} // namespace sela
