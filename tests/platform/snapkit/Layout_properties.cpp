#include "platform/snapkit/ConstraintViewDSL.h"

#include "platform/snapkit/LayoutTest.h"

#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace sela {
namespace {

using Attribute = ConstraintAttribute;

double valueOf(const CGRect& frame, Attribute attribute) {
    switch (attribute) {
    case Attribute::left:
    case Attribute::leading:
        return frame.minX();
    case Attribute::right:
    case Attribute::trailing:
        return frame.maxX();
    case Attribute::top:
        return frame.minY();
    case Attribute::bottom:
        return frame.maxY();
    case Attribute::width:
        return frame.size.width;
    case Attribute::height:
        return frame.size.height;
    case Attribute::centerX:
        return frame.midX();
    case Attribute::centerY:
        return frame.midY();
    }
    return 0;
}

ConstraintMakerExtendable say(ConstraintMaker& make, Attribute attribute) {
    switch (attribute) {
    case Attribute::left:
        return make.left();
    case Attribute::right:
        return make.right();
    case Attribute::leading:
        return make.leading();
    case Attribute::trailing:
        return make.trailing();
    case Attribute::top:
        return make.top();
    case Attribute::bottom:
        return make.bottom();
    case Attribute::width:
        return make.width();
    case Attribute::height:
        return make.height();
    case Attribute::centerX:
        return make.centerX();
    case Attribute::centerY:
        break;
    }
    return make.centerY();
}

/// A line of layout and what it says, in the root's coordinates.
struct Line {
    UIView* view;
    Attribute attribute;
    UIView* target;
    Attribute targetAttribute;
    double multiplier;
    UIView* common; ///< what multiplied places count from

    double rightSide(const auto& frameOf) const {
        const double target_ = valueOf(frameOf(*target), targetAttribute);
        if (attribute == Attribute::width || attribute == Attribute::height)
            return multiplier * target_;
        const bool horizontal =
            attribute == Attribute::left || attribute == Attribute::right || attribute == Attribute::centerX;
        const double origin = valueOf(frameOf(*common), horizontal ? Attribute::left : Attribute::top);
        return multiplier * (target_ - origin) + origin;
    }
};

/// A tree of views, each with the place that it is meant to have and the number of lines that say so; a view
/// without lines gets the frame itself.
class RandomTree {
public:
    RandomTree() {
        add(nullptr, {0, 0, 320, 480}, 0);
        const int count = *rc::gen::inRange(1, 16);
        for (int i = 0; i < count; ++i)
            add(*rc::gen::elementOf(views_),
                CGRect(*rc::gen::inRange(-100, 400), *rc::gen::inRange(-100, 400),
                       *rc::gen::inRange(0, 300) * 0.5, *rc::gen::inRange(0, 300) * 0.5),
                *rc::gen::inRange(0, 6));
    }

    UIView& root() { return *views_.front(); }
    const std::vector<std::shared_ptr<UIView>>& views() const { return views_; }
    const CGRect& meant(const UIView& view) const { return meant_[number(view)]; }
    int lines(const UIView& view) const { return lines_[number(view)]; }

    /// A view that is laid out together with `view` or has a place that nothing moves.
    UIView& targetFor(const UIView& view) const {
        std::vector<std::shared_ptr<UIView>> targets;
        const UIView& root = layoutRoot(view);
        for (const auto& target : views_)
            if (target.get() == &root || (lines(*target) > 0 && &layoutRoot(*target) == &root) ||
                (isPlaced(*target) && isPlaced(root)))
                targets.push_back(target);
        return **rc::gen::elementOf(targets);
    }

private:
    void add(const std::shared_ptr<UIView>& superview, const CGRect& meant, int lines) {
        auto view = std::make_shared<UIView>(meant);
        view->setName(std::to_string(views_.size()));
        if (superview) {
            const CGPoint outer = this->meant(*superview).origin;
            view->setFrame(meant.offsetBy(-outer.x, -outer.y));
            superview->addSubview(*view);
        }
        views_.push_back(std::move(view));
        meant_.push_back(meant);
        lines_.push_back(lines);
    }

    std::size_t number(const UIView& view) const { return std::stoul(view.name()); }

    const UIView& layoutRoot(const UIView& view) const {
        const UIView* root = view.superview();
        while (lines(*root) > 0)
            root = root->superview();
        return *root;
    }

    bool isPlaced(const UIView& view) const {
        const UIView* placed = &view;
        while (placed && lines(*placed) == 0)
            placed = placed->superview();
        return !placed;
    }

    std::vector<CGRect> meant_;
    std::vector<int> lines_;
    std::vector<std::shared_ptr<UIView>> views_; ///< superviews before subviews
};

Line randomLine(const RandomTree& tree, UIView& view) {
    constexpr Attribute horizontal[] = {Attribute::left, Attribute::right, Attribute::centerX};
    constexpr Attribute vertical[] = {Attribute::top, Attribute::bottom, Attribute::centerY};
    constexpr Attribute sizes[] = {Attribute::width, Attribute::height};
    Line line{&view, {}, &tree.targetFor(view), {}, *rc::gen::element(1.0, 1.0, 1.0, 0.5, 2.0), &view};
    const auto pick = [&line](const auto& attributes) {
        line.attribute = *rc::gen::elementOf(std::vector(std::begin(attributes), std::end(attributes)));
        line.targetAttribute = *rc::gen::elementOf(std::vector(std::begin(attributes), std::end(attributes)));
    };
    switch (*rc::gen::inRange(0, 3)) {
    case 0:
        pick(horizontal);
        break;
    case 1:
        pick(vertical);
        break;
    default:
        pick(sizes);
        break;
    }
    while (!line.target->isDescendant(*line.common))
        line.common = line.common->superview();
    return line;
}

RC_GTEST_PROP(LayoutProperties, LinesThatHaveACommonSolutionAllHold, ()) {
    RandomTree tree;
    const CapturedLog log;
    std::vector<std::pair<Line, double>> said;
    const auto meant = [&](const UIView& view) { return tree.meant(view); };
    for (const auto& view : tree.views())
        for (int i = 0; i < tree.lines(*view); ++i) {
            const Line line = randomLine(tree, *view);
            const double constant = valueOf(meant(*view), line.attribute) - line.rightSide(meant);
            view->snp().makeConstraints([&](ConstraintMaker& make) {
                say(make, line.attribute)
                    .equalTo(ConstraintItem{*line.target, {line.targetAttribute}})
                    .multipliedBy(line.multiplier)
                    .offset(constant);
            });
            said.emplace_back(line, constant);
        }
    tree.root().layoutIfNeeded();
    for (const auto& [line, constant] : said) {
        const double left = valueOf(frameInRoot(*line.view), line.attribute);
        const double right = line.rightSide(frameInRoot) + constant;
        RC_ASSERT(std::abs(left - right) <= 1e-6);
    }
    RC_ASSERT(log.lines().empty());
}

} // namespace
} // namespace sela
