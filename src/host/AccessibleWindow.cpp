#include "host/AccessibleWindow.h"

#include "host/AccessibleElement.h"
#include "host/ScreenElements.h"

#include <QGuiApplication>

#include <algorithm>

namespace sela {

/// The text that was announced last.
class AccessibleWindow::Announcement : public QAccessibleInterface {
public:
    explicit Announcement(AccessibleWindow& window) : window_(window) {}

    void setText(const QString& text) { text_ = text; }

    bool isValid() const override { return true; }
    QObject* object() const override { return nullptr; }
    QAccessibleInterface* parent() const override { return &window_; }
    int childCount() const override { return 0; }
    QAccessibleInterface* child(int) const override { return nullptr; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Name ? text_ : QString();
    }
    void setText(QAccessible::Text, const QString&) override {}
    QRect rect() const override { return {}; }
    QAccessible::Role role() const override { return QAccessible::Notification; }
    QAccessible::State state() const override { return {}; }

private:
    AccessibleWindow& window_;
    QString text_;
};

AccessibleWindow::AccessibleWindow(QWindow& window, Screen screen)
    : QAccessibleObject(&window), screen_(std::move(screen)) {}

AccessibleWindow::~AccessibleWindow() {
    for (const auto& [view, told] : told_)
        QAccessible::deleteAccessibleInterface(told.id);
    if (announcement_)
        QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(announcement_));
}

QAccessibleInterface* AccessibleWindow::interfaceOf(UIView* view) {
    if (!view)
        return nullptr;
    Told& told = told_[view];
    // Another view may have been created at the address of a destroyed one.
    if (told.view.get() != view) {
        if (told.id)
            QAccessible::deleteAccessibleInterface(told.id);
        told = {};
        told.view = ViewReference(*view);
        told.id = QAccessible::registerAccessibleInterface(new AccessibleElement(*this, *view));
    }
    return QAccessible::accessibleInterface(told.id);
}

UIView* AccessibleWindow::focusedElement() const {
    if (UIView* const view = screen_.keyboard.focusedView())
        return view;
    for (UIView* const element : ScreenElements::inside(screen_.window, screen_.window))
        if (element->accessibilityRole() == AccessibilityRole::secureTextField)
            return element;
    return nullptr;
}

/// All that are shown, each before those inside it.
std::vector<UIView*> AccessibleWindow::elements() const {
    std::vector<UIView*> all;
    const std::function<void(const UIView&)> add = [&](const UIView& view) {
        for (UIView* const element : ScreenElements::inside(screen_.window, view)) {
            all.push_back(element);
            add(*element);
        }
    };
    add(screen_.window);
    return all;
}

void AccessibleWindow::update() {
    // Screens that slide in or out are reported when they have arrived.
    if (!screen_.window.isIdle())
        return;
    const std::vector<UIView*> shown = elements();
    forgetElementsThatLeft(shown);
    for (UIView* const view : shown)
        tellChanges(*view);
    tellFocus();
}

void AccessibleWindow::forgetElementsThatLeft(const std::vector<UIView*>& shown) {
    std::erase_if(told_, [&](const auto& entry) {
        const Told& told = entry.second;
        if (told.view && std::ranges::find(shown, entry.first) != shown.end())
            return false;
        if (told.isTold) {
            QAccessibleEvent event(QAccessible::accessibleInterface(told.id), QAccessible::ObjectDestroyed);
            QAccessible::updateAccessibility(&event);
        }
        QAccessible::deleteAccessibleInterface(told.id);
        return true;
    });
}

void AccessibleWindow::tellChanges(UIView& view) {
    QAccessibleInterface* const element = interfaceOf(&view);
    Told& told = told_[&view];
    const auto tell = [&](QAccessible::Event kind) {
        QAccessibleEvent event(element, kind);
        QAccessible::updateAccessibility(&event);
    };
    const QString name = element->text(QAccessible::Name);
    const QString description = element->text(QAccessible::Description);
    const QString value = element->text(QAccessible::Value);
    const AccessibilityExpandedStatus expanded = view.accessibilityExpandedStatus();
    if (!told.isTold) {
        tell(QAccessible::ObjectCreated);
    } else {
        if (name != told.name)
            tell(QAccessible::NameChanged);
        if (description != told.description)
            tell(QAccessible::DescriptionChanged);
        if (value != told.value) {
            QAccessibleValueChangeEvent event(element, value.toInt());
            QAccessible::updateAccessibility(&event);
        }
        if (expanded != told.expanded) {
            QAccessible::State changed;
            changed.expanded = true;
            QAccessibleStateChangeEvent event(element, changed);
            QAccessible::updateAccessibility(&event);
        }
    }
    told.isTold = true;
    told.name = name;
    told.description = description;
    told.value = value;
    told.expanded = expanded;
}

void AccessibleWindow::tellFocus() {
    QAccessibleInterface* const element = focusChild();
    const QAccessible::Id id = element ? QAccessible::uniqueId(element) : 0;
    if (id == focused_)
        return;
    focused_ = id;
    QAccessibleEvent event(element ? element : this, QAccessible::Focus);
    QAccessible::updateAccessibility(&event);
}

void AccessibleWindow::announce(const std::string& text) {
    if (!announcement_) {
        announcement_ = new Announcement(*this);
        QAccessible::registerAccessibleInterface(announcement_);
        QAccessibleEvent created(announcement_, QAccessible::ObjectCreated);
        QAccessible::updateAccessibility(&created);
    }
    announcement_->setText(QString::fromStdString(text));
    for (const QAccessible::Event kind : {QAccessible::NameChanged, QAccessible::ObjectShow}) {
        QAccessibleEvent event(announcement_, kind);
        QAccessible::updateAccessibility(&event);
    }
}

QAccessibleInterface* AccessibleWindow::parent() const {
    return QAccessible::queryAccessibleInterface(qApp);
}

int AccessibleWindow::childCount() const {
    const std::size_t elements = ScreenElements::inside(screen_.window, screen_.window).size();
    return static_cast<int>(elements) + (announcement_ ? 1 : 0);
}

QAccessibleInterface* AccessibleWindow::child(int index) const {
    const std::vector<UIView*> inside = ScreenElements::inside(screen_.window, screen_.window);
    const auto place = static_cast<std::size_t>(index);
    if (index >= 0 && place < inside.size())
        return const_cast<AccessibleWindow*>(this)->interfaceOf(inside[place]);
    return place == inside.size() ? announcement_ : nullptr;
}

int AccessibleWindow::indexOfChild(const QAccessibleInterface* child) const {
    for (int index = 0; index < childCount(); ++index)
        if (this->child(index) == child)
            return index;
    return -1;
}

QAccessibleInterface* AccessibleWindow::focusChild() const {
    return const_cast<AccessibleWindow*>(this)->interfaceOf(focusedElement());
}

QString AccessibleWindow::text(QAccessible::Text kind) const {
    return kind == QAccessible::Name ? static_cast<QWindow*>(object())->title() : QString();
}

QRect AccessibleWindow::rect() const {
    return static_cast<QWindow*>(object())->geometry();
}

QAccessible::State AccessibleWindow::state() const {
    QAccessible::State state;
    state.active = static_cast<QWindow*>(object())->isActive();
    state.focusable = true;
    state.focused = state.active && !focusedElement();
    return state;
}

} // namespace sela
