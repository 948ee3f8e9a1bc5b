#pragma once

#include "host/AccessibleWindow.h"

#include <QAccessible>

namespace sela {

/// One element of the screen, as a screen reader sees it. Belongs to Qt; its window destroys it when the
/// element has left the screen. Main thread only.
class AccessibleElement : public QAccessibleInterface,
                          public QAccessibleActionInterface,
                          public QAccessibleValueInterface {
public:
    /// `window` must outlive this.
    AccessibleElement(AccessibleWindow& window, UIView& view);

    bool isValid() const override;
    QObject* object() const override { return nullptr; }
    QWindow* window() const override;
    QAccessibleInterface* parent() const override;
    int childCount() const override;
    QAccessibleInterface* child(int index) const override;
    int indexOfChild(const QAccessibleInterface* child) const override;
    QAccessibleInterface* childAt(int x, int y) const override;
    QString text(QAccessible::Text kind) const override;
    void setText(QAccessible::Text, const QString&) override {}
    QRect rect() const override;
    QAccessible::Role role() const override;
    QAccessible::State state() const override;
    void* interface_cast(QAccessible::InterfaceType type) override;

    QStringList actionNames() const override;
    void doAction(const QString& name) override;
    QStringList keyBindingsForAction(const QString&) const override { return {}; }

    /// How many digits are entered.
    QVariant currentValue() const override;
    void setCurrentValue(const QVariant&) override {}
    QVariant maximumValue() const override { return {}; }
    QVariant minimumValue() const override { return 0; }
    QVariant minimumStepSize() const override { return 1; }

private:
    /// The view while it is in the window; null afterwards.
    UIView* view() const;
    bool isControl() const;

    AccessibleWindow& window_;
    const ViewReference<UIView> view_;
};

} // namespace sela
