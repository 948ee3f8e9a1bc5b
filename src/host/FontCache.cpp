#include "host/FontCache.h"

#include <QString>
#include <QStringList>

namespace sela {

namespace {

/// Qt's font sizes are typographic points, of which its 96 dots an inch make 96 / 72 of ours.
constexpr double typographicPointsPerPoint = 72.0 / 96;

/// The family has no semibold; its medium is the nearest to what the platform shows.
QFont::Weight qtWeight(UIFont::Weight weight) {
    switch (weight) {
    case UIFont::Weight::light:
        return QFont::Light;
    case UIFont::Weight::regular:
        return QFont::Normal;
    case UIFont::Weight::semibold:
        return QFont::Medium;
    case UIFont::Weight::bold:
        return QFont::Bold;
    }
    return QFont::Normal;
}

} // namespace

const QFont& FontCache::font(const UIFont& font) {
    const auto [entry, isNew] = fonts_.try_emplace({font.familyName(), font.weight(), font.size()});
    QFont& made = entry->second;
    if (!isNew)
        return made;
    QStringList families{QStringLiteral("Roboto"), QStringLiteral("Noto Sans"),
                         QStringLiteral("Noto Sans Arabic")};
    if (const QString family = QString::fromStdString(font.familyName());
        !family.isEmpty() && family != families.front())
        families.prepend(family);
    made.setFamilies(families);
    made.setWeight(qtWeight(font.weight()));
    made.setPointSizeF(font.size() * typographicPointsPerPoint);
    made.setHintingPreference(QFont::PreferNoHinting);
    made.setStyleStrategy(
        static_cast<QFont::StyleStrategy>(QFont::PreferAntialias | QFont::NoSubpixelAntialias));
    return made;
}

} // namespace sela
