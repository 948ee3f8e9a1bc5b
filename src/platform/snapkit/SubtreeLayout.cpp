#include "platform/snapkit/SubtreeLayout.h"

#include "platform/foundation/NSLog.h"
#include "platform/foundation/URL.h"
#include "platform/snapkit/ViewConstraints.h"
#include "platform/uikit/UIView.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace sela {

namespace {

void logDropped(const UIView& view, const Constraint& constraint) {
    static std::set<std::pair<std::string, unsigned>> logged;
    const std::string file = URL::fileURL(constraint.place.file).lastPathComponent();
    if (!logged.emplace(file, constraint.place.line).second)
        return;
    NSLog("Constraint dropped at " + file + ":" + std::to_string(constraint.place.line) + ": the " +
          nameOf(constraint.attribute) + " of " + view.className() +
          (view.name().empty() ? "" : " " + view.name()) + " contradicts other constraints");
}

const UIView& nearestCommonView(const UIView& a, const UIView& b) {
    const UIView* common = &a;
    while (!b.isDescendant(*common))
        common = common->superview();
    return *common;
}

} // namespace

SubtreeLayout::SubtreeLayout(UIView& root) : root_(root) {
    addKnownViews();
    addMembers(root);
    moved_ = members_.size();
    collectEquations();
}

void SubtreeLayout::apply() {
    addEquations();
    addNaturalSizes();
    addZeros();
    for (std::size_t i = 0; i < moved_; ++i)
        members_[i].view->setLayoutFrame(frame(members_[i]));
}

void SubtreeLayout::addKnownViews() {
    CGPoint position;
    const UIView* view = &root_;
    while (true) {
        const CGRect bounds = view->bounds();
        boxes_.insert({view,
                       {{LinearExpression(position.x), LinearExpression(bounds.size.width)},
                        {LinearExpression(position.y), LinearExpression(bounds.size.height)}}});
        const UIView* superview = view->superview();
        if (!superview)
            return;
        const CGPoint origin = view->layoutFrame().origin;
        position.x -= origin.x - superview->bounds().origin.x;
        position.y -= origin.y - superview->bounds().origin.y;
        view = superview;
    }
}

void SubtreeLayout::addMembers(const UIView& superview) {
    for (UIView* view : superview.subviews()) {
        if (!view->layoutConstraints())
            continue;
        const Member member{view, system_.addVariable(), system_.addVariable(), system_.addVariable(),
                            system_.addVariable()};
        members_.push_back(member);
        boxes_.insert({view,
                       {{LinearExpression(member.left), LinearExpression(member.width)},
                        {LinearExpression(member.top), LinearExpression(member.height)}}});
        addMembers(*view);
    }
}

const SubtreeLayout::Box* SubtreeLayout::box(const UIView& view) {
    if (const auto found = boxes_.find(&view); found != boxes_.end())
        return &found->second;
    const UIView* superview = view.superview();
    const Box* outer = superview ? box(*superview) : nullptr;
    if (!outer)
        return nullptr;
    if (view.layoutConstraints() && !isLaidOutBefore(view)) {
        if (!boxes_.contains(&view))
            addMembers(*superview);
        return &boxes_.at(&view);
    }

    const CGRect frame = view.layoutFrame();
    const CGPoint origin = superview->bounds().origin;
    Box box{{outer->horizontal.start, LinearExpression(frame.size.width)},
            {outer->vertical.start, LinearExpression(frame.size.height)}};
    box.horizontal.start.add(frame.origin.x - origin.x);
    box.vertical.start.add(frame.origin.y - origin.y);
    return &boxes_.insert({&view, std::move(box)}).first->second;
}

bool SubtreeLayout::isLaidOutBefore(const UIView& view) const {
    const UIView* layoutRoot = view.superview();
    while (layoutRoot->layoutConstraints() && layoutRoot->superview())
        layoutRoot = layoutRoot->superview();
    return root_.isDescendant(*layoutRoot);
}

void SubtreeLayout::collectEquations() {
    // Looking up a target may add a member, whose constraints are then processed in turn.
    for (std::size_t i = 0; i < members_.size(); ++i) {
        UIView* view = members_[i].view;
        const ViewConstraints* own = ViewConstraints::of(*view);
        if (!own)
            continue;
        for (const Constraint& constraint : own->constraints()) {
            const UIView* target = constraint.target ? constraint.target->get() : nullptr;
            if (constraint.target && (!target || !box(*target)))
                continue;
            equations_.push_back({view, target, &constraint});
        }
    }
    std::ranges::sort(equations_, {}, [](const Equation& equation) {
        return std::pair(-equation.constraint->priority, equation.constraint->number);
    });
}

LinearExpression SubtreeLayout::expression(const Equation& equation) {
    const Constraint& constraint = *equation.constraint;
    const bool fromRight =
        (followsReading(constraint.attribute) || followsReading(constraint.targetAttribute)) &&
        equation.view->effectiveUserInterfaceLayoutDirection() == UIUserInterfaceLayoutDirection::rightToLeft;
    LinearExpression sum =
        attribute(*equation.view, constraint.attribute, fromRight).add(-constraint.constant);
    if (!equation.target)
        return sum;
    sum.add(attribute(*equation.target, constraint.targetAttribute, fromRight), -constraint.multiplier);
    if (constraint.multiplier != 1 && !isSize(constraint.attribute)) {
        const UIView& common = nearestCommonView(*equation.view, *equation.target);
        const ConstraintAttribute edge =
            isHorizontal(constraint.attribute) ? ConstraintAttribute::leading : ConstraintAttribute::top;
        sum.add(attribute(common, edge, fromRight), constraint.multiplier - 1);
    }
    return sum;
}

/// A size, or a place as its distance from the root's left or top edge; `fromRight` gives places as distances
/// to the left of the root's left edge, so that they grow in the reading direction.
LinearExpression SubtreeLayout::attribute(const UIView& view, ConstraintAttribute attribute, bool fromRight) {
    const Box& box = boxes_.at(&view);
    const Span& span = isHorizontal(attribute) ? box.horizontal : box.vertical;
    if (isSize(attribute))
        return span.length;
    double part = 0;
    if (attribute == ConstraintAttribute::right || attribute == ConstraintAttribute::bottom ||
        attribute == (fromRight ? ConstraintAttribute::leading : ConstraintAttribute::trailing))
        part = 1;
    else if (attribute == ConstraintAttribute::centerX || attribute == ConstraintAttribute::centerY)
        part = 0.5;
    LinearExpression result = span.start;
    if (part != 0)
        result.add(span.length, part);
    return fromRight ? result.multiply(-1) : result;
}

void SubtreeLayout::addEquations() {
    for (const Equation& equation : equations_)
        if (system_.addEquation(expression(equation)) == LinearSystem::Outcome::contradiction)
            logDropped(*equation.view, *equation.constraint);
}

void SubtreeLayout::addNaturalSizes() {
    // Widths first: heights, as those of text, depend on them. Sizes that are known are not measured, since
    // measuring text is the most expensive part of a layout.
    for (const Member& member : members_) {
        if (system_.value(member.width))
            continue;
        const double width = member.view->intrinsicContentSize().width;
        if (width != UIView::noIntrinsicMetric)
            system_.assign(member.width, width);
    }
    for (const Member& member : members_) {
        if (system_.value(member.height))
            continue;
        const std::optional<double> width = system_.value(member.width);
        const double height =
            width ? member.view->intrinsicHeight(*width) : member.view->intrinsicContentSize().height;
        if (height != UIView::noIntrinsicMetric)
            system_.assign(member.height, height);
    }
}

void SubtreeLayout::addZeros() {
    for (const Member& member : members_) {
        system_.assign(member.width, 0);
        system_.assign(member.height, 0);
    }
    for (const Member& member : members_) {
        const Box& outer = boxes_.at(member.view->superview());
        system_.addEquation(LinearExpression(member.left).add(outer.horizontal.start, -1));
        system_.addEquation(LinearExpression(member.top).add(outer.vertical.start, -1));
    }
}

double SubtreeLayout::value(const LinearExpression& expression) const {
    double sum = expression.constant();
    for (const Term& term : expression.terms())
        sum += term.coefficient * system_.value(term.variable).value();
    return sum;
}

CGRect SubtreeLayout::frame(const Member& member) const {
    const UIView& superview = *member.view->superview();
    const Box& outer = boxes_.at(&superview);
    const CGPoint origin = superview.bounds().origin;
    return {value(LinearExpression(member.left)) - value(outer.horizontal.start) + origin.x,
            value(LinearExpression(member.top)) - value(outer.vertical.start) + origin.y,
            value(LinearExpression(member.width)), value(LinearExpression(member.height))};
}

} // namespace sela
