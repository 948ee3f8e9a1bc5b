#pragma once

#include "host/CommandLine.h"
#include "platform/foundation/Dumpable.h"
#include "platform/uikit/UIColor.h"

#include <QObject>
#include <QString>

#include <functional>
#include <optional>
#include <utility>

class QDBusPendingCallWatcher;
class QDBusVariant;

namespace sela {

/// The appearance that the command line sets, and where it sets none the desktop's: that of the settings
/// portal where there is one, else that of the palette. The portal also decides whether motion is reduced,
/// unless $SELA_REDUCED_MOTION is 0 or 1. The portal is read in the background and its changes are followed,
/// so that nothing waits for it; without a window it is not read at all. Main thread only, while a
/// QGuiApplication exists.
class DesktopAppearance : public QObject {
    Q_OBJECT

public:
    explicit DesktopAppearance(const CommandLine& line);

    UITraitCollection traitCollection() const;

    bool reducesMotion() const;

    /// Called when one of these has changed.
    void setChangeHandler(std::function<void()> handler) { changeHandler_ = std::move(handler); }

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    Q_SLOT void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);
    void askPortal();
    void take(const QDBusPendingCallWatcher& answer);
    void set(const QString& group, const QString& key, const QVariant& value);
    void report();

    const CommandLine::Appearance appearance_;
    const CommandLine::Contrast contrast_;
    std::optional<DumpableScope> visibleToPortal_; ///< until it has answered
    std::optional<UIUserInterfaceStyle> portalStyle_;
    std::optional<UIAccessibilityContrast> portalContrast_;
    const std::optional<bool> environmentReducesMotion_;
    bool portalReducesMotion_ = false;
    bool desktopAnimates_ = true;
    UITraitCollection reported_;
    bool reportedReducesMotion_ = false;
    std::function<void()> changeHandler_;
};

} // namespace sela
