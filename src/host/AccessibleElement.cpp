#include "host/AccessibleElement.h"

#include "host/ScreenElements.h"
#include "platform/uikit/UIControl.h"

#include <vector>

namespace sela {

AccessibleElement::AccessibleElement(AccessibleWindow& window, UIView& view) : window_(window), view_(view) {}

UIView* AccessibleElement::view() const {
    UIView* const view = view_.get();
    return view && view->window() == &window_.screen().window ? view : nullptr;
}

bool AccessibleElement::isValid() const {
    return view() != nullptr;
}

bool AccessibleElement::isControl() const {
    return view() && ScreenElements::isControl(*view());
}

QWindow* AccessibleElement::window() const {
    return qobject_cast<QWindow*>(window_.object());
}

/// An element that has left the screen still has the window as its parent, which is notified of its removal.
QAccessibleInterface* AccessibleElement::parent() const {
    UIView* const above = view() ? ScreenElements::around(*view()) : nullptr;
    return above ? window_.interfaceOf(above) : &window_;
}

int AccessibleElement::childCount() const {
    return view() ? static_cast<int>(ScreenElements::inside(window_.screen().window, *view()).size()) : 0;
}

QAccessibleInterface* AccessibleElement::child(int index) const {
    if (!view() || index < 0)
        return nullptr;
    const std::vector<UIView*> inside = ScreenElements::inside(window_.screen().window, *view());
    const auto place = static_cast<std::size_t>(index);
    return place < inside.size() ? window_.interfaceOf(inside[place]) : nullptr;
}

int AccessibleElement::indexOfChild(const QAccessibleInterface* child) const {
    for (int index = 0; index < childCount(); ++index)
        if (this->child(index) == child)
            return index;
    return -1;
}

QAccessibleInterface* AccessibleElement::childAt(int x, int y) const {
    for (int index = childCount() - 1; index >= 0; --index)
        if (QAccessibleInterface* const below = child(index); below && below->rect().contains(x, y))
            return below;
    return nullptr;
}

QString AccessibleElement::text(QAccessible::Text kind) const {
    if (!view())
        return {};
    if (kind == QAccessible::Name)
        return QString::fromStdString(view()->accessibilityLabel());
    const bool isEntry = view()->accessibilityRole() == AccessibilityRole::secureTextField;
    if (kind == (isEntry ? QAccessible::Value : QAccessible::Description))
        return QString::fromStdString(view()->accessibilityValue());
    return {};
}

QRect AccessibleElement::rect() const {
    return view() ? window_.screen().onDesktop(window_.screen().window.shownRect(*view())) : QRect();
}

QAccessible::Role AccessibleElement::role() const {
    switch (view() ? view()->accessibilityRole() : AccessibilityRole::none) {
    case AccessibilityRole::button:
    case AccessibilityRole::keyboardKey:
        return QAccessible::Button;
    case AccessibilityRole::image:
        return QAccessible::Graphic;
    case AccessibilityRole::staticText:
        return QAccessible::StaticText;
    case AccessibilityRole::secureTextField:
        return QAccessible::EditableText;
    case AccessibilityRole::progress:
        return QAccessible::ProgressBar;
    case AccessibilityRole::list:
        return QAccessible::List;
    case AccessibilityRole::listItem:
        return QAccessible::ListItem;
    case AccessibilityRole::none:
        break;
    }
    return QAccessible::NoRole;
}

QAccessible::State AccessibleElement::state() const {
    QAccessible::State state;
    if (!view()) {
        state.invalid = true;
        return state;
    }
    const auto* const control = dynamic_cast<const UIControl*>(view());
    state.disabled = control && !control->isEnabled();
    // Screen readers keep silent about the keys that are typed into a password entry.
    state.passwordEdit = view()->accessibilityRole() == AccessibilityRole::secureTextField;
    state.focusable = isControl() || state.passwordEdit;
    state.focused = window_.focusedElement() == view();
    state.selectable = view()->accessibilityRole() == AccessibilityRole::listItem;
    const AccessibilityExpandedStatus expanded = view()->accessibilityExpandedStatus();
    state.expandable = expanded != AccessibilityExpandedStatus::unsupported;
    state.expanded = expanded == AccessibilityExpandedStatus::expanded;
    state.collapsed = expanded == AccessibilityExpandedStatus::collapsed;
    return state;
}

void* AccessibleElement::interface_cast(QAccessible::InterfaceType type) {
    if (type == QAccessible::ActionInterface && isControl())
        return static_cast<QAccessibleActionInterface*>(this);
    if (type == QAccessible::ValueInterface && view() &&
        view()->accessibilityRole() == AccessibilityRole::secureTextField)
        return static_cast<QAccessibleValueInterface*>(this);
    return nullptr;
}

QStringList AccessibleElement::actionNames() const {
    if (!isControl())
        return {};
    return {pressAction(), setFocusAction()};
}

void AccessibleElement::doAction(const QString& name) {
    if (!isControl())
        return;
    if (name == pressAction()) {
        ScreenElements::tap(window_.screen().window, *view());
    } else if (name == setFocusAction()) {
        window_.screen().keyboard.setFocusedView(*view());
        view()->setNeedsDisplay();
    }
}

QVariant AccessibleElement::currentValue() const {
    return view() ? QString::fromStdString(view()->accessibilityValue()).toInt() : 0;
}

} // namespace sela
