#include "host/ProbeWindow.h"

#include <gmock/gmock.h>

#include <QAccessible>
#include <private/qguiapplication_p.h>
#include <qpa/qplatformaccessibility.h>
#include <qpa/qplatformintegration.h>

namespace sela {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

/// The events of the window since the last call, as "event name".
std::vector<std::string>& told() {
    static std::vector<std::string> events;
    return events;
}

void hear(QAccessibleEvent* event) {
    const std::map<QAccessible::Event, const char*> kinds{
        {QAccessible::Focus, "focus"},           {QAccessible::NameChanged, "name"},
        {QAccessible::ObjectCreated, "created"}, {QAccessible::ObjectDestroyed, "destroyed"},
        {QAccessible::StateChanged, "state"},    {QAccessible::ValueChanged, "value"}};
    QAccessibleInterface* const element = event->accessibleInterface();
    if (!element || !kinds.contains(event->type()))
        return;
    told().push_back(kinds.at(event->type()) + (" " + element->text(QAccessible::Name).toStdString()));
}

/// A probe screen in a window while a screen reader listens.
class AccessibilityTest : public ProbeWindowTest {
protected:
    void SetUp() override {
        QAccessible::installUpdateHandler(hear);
        setActive(true);
        ProbeWindowTest::SetUp();
        look();
    }

    void TearDown() override {
        setActive(false);
        QAccessible::installUpdateHandler(nullptr);
    }

    static void setActive(bool active) {
        QGuiApplicationPrivate::platformIntegration()->accessibility()->setActive(active);
    }

    /// Makes the window draw, and returns the events.
    std::vector<std::string> look() {
        told().clear();
        EXPECT_TRUE(QTest::qWaitFor([&] { return !window_.needsFrame(); }));
        QTest::qWait(30);
        return told();
    }

    QAccessibleInterface& root() { return *QAccessible::queryAccessibleInterface(&shareWindow_); }

    static std::vector<std::string> names(QAccessibleInterface& element) {
        std::vector<std::string> names;
        names.reserve(static_cast<std::size_t>(element.childCount()));
        for (int index = 0; index < element.childCount(); ++index)
            names.push_back(element.child(index)->text(QAccessible::Name).toStdString());
        return names;
    }
};

} // namespace

TEST_F(AccessibilityTest, PlacesTheElementsAndAnEntryHasTheFocusOnlyWhereNothingElseHas) {
    QAccessibleInterface& button = *root().child(3);
    EXPECT_EQ(root().indexOfChild(&button), 3);
    EXPECT_EQ(button.rect().translated(-shareWindow_.mapToGlobal(QPoint())), QRect(40, 280, 120, 80));
    EXPECT_EQ(root().childAt(button.rect().center().x(), button.rect().center().y()), &button);
    UIView entry({200, 140, 100, 20});
    entry.setAccessibilityRole(AccessibilityRole::secureTextField);
    probe_->view().addSubview(entry);
    look();
    EXPECT_NE(root().focusChild(), &button);
    button.actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
    EXPECT_EQ(root().focusChild(), &button);
}

TEST_F(AccessibilityTest, TellsWhatChangesAndForgetsWhatIsGone) {
    QAccessibleInterface* const button = root().child(3);
    const QAccessible::Id id = QAccessible::uniqueId(button);
    probe_->button7.setTitle("seven");
    probe_->button7.setAccessibilityLabel("");
    EXPECT_THAT(look(), ElementsAre("name seven"));
    probe_->button7.setHidden(true);
    EXPECT_THAT(look(), ElementsAre("destroyed seven"));
    EXPECT_EQ(QAccessible::accessibleInterface(id), nullptr);
    probe_->button7.setHidden(false);
    EXPECT_THAT(look(), ElementsAre("created seven"));

    // The cell of a row that scrolled away may be reused for another one.
    probe_->tableView.scrollToRow({.row = 20, .section = 1});
    look();
    EXPECT_THAT(names(*root().child(4)), Not(IsEmpty()));
    probe_->tableView.removeFromSuperview();
    look();
    EXPECT_EQ(root().childCount(), 4);
}

} // namespace sela
