#pragma once

#include "host/KeyboardNavigation.h"
#include "platform/uikit/UIWindow.h"

#include <QAccessible>
#include <QAccessibleObject>
#include <QWindow>

#include <functional>
#include <map>
#include <memory>
#include <string>

namespace sela {

/// What a screen reader reads and works: the window of the desktop, with the elements of the screen that is
/// shown in it. `update`, called for each frame, reports what changed; an announcement is a notification
/// element at the end of the window's children. Main thread only.
///
/// Of a passcode entry it reports only the length; the typed digits are never stored here.
class AccessibleWindow : public QAccessibleObject {
public:
    /// What the window shows, which must outlive this.
    struct Screen {
        UIWindow& window;
        KeyboardNavigation& keyboard;
        std::function<QRect(const CGRect& rect)> onDesktop; ///< from window points
    };

    /// Belongs to Qt, which destroys it with `window`.
    AccessibleWindow(QWindow& window, Screen screen);
    ~AccessibleWindow() override;

    /// Reports to the screen reader what changed since the last call.
    void update();

    /// Has the screen reader say `text`.
    void announce(const std::string& text);

    const Screen& screen() const { return screen_; }

    /// The accessible object of an element; null for a null view.
    QAccessibleInterface* interfaceOf(UIView* view);

    /// The element that receives the keyboard's input: the control that has the focus, else the passcode
    /// entry, which receives digits whatever has the focus. Null when there is neither.
    UIView* focusedElement() const;

    QAccessibleInterface* parent() const override;
    int childCount() const override;
    QAccessibleInterface* child(int index) const override;
    int indexOfChild(const QAccessibleInterface* child) const override;
    QAccessibleInterface* focusChild() const override;
    QString text(QAccessible::Text kind) const override;
    QRect rect() const override;
    QAccessible::Role role() const override { return QAccessible::Window; }
    QAccessible::State state() const override;

private:
    class Announcement;

    /// What was last reported of an element.
    struct Told {
        ViewReference<UIView> view;
        QAccessible::Id id = 0;
        bool isTold = false;
        QString name;
        QString description;
        QString value;
        AccessibilityExpandedStatus expanded = AccessibilityExpandedStatus::unsupported;
    };

    std::vector<UIView*> elements() const;
    void forgetElementsThatLeft(const std::vector<UIView*>& shown);
    void tellChanges(UIView& view);
    void tellFocus();

    const Screen screen_;
    std::map<const UIView*, Told> told_;
    QAccessible::Id focused_ = 0;
    Announcement* announcement_ = nullptr; ///< Qt's; null before the first
};

} // namespace sela
