#include "platform/snapkit/ConstraintViewDSL.h"

#include "support/LogCapture.h"

#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace sela {
namespace {

using Attribute = ConstraintAttribute;

/// An attribute, how a line begins with it, and its value in a frame.
struct Measure {
    Attribute attribute;
    ConstraintMakerExtendable (*say)(ConstraintMaker&);
    double (*of)(const CGRect&);
};

// Those that can be related to each other: places from left to right, places downwards, sizes.
const std::vector<Measure> measures[] = {
    {{Attribute::left, [](auto& make) { return make.left(); }, [](auto& frame) { return frame.minX(); }},
     {Attribute::right, [](auto& make) { return make.right(); }, [](auto& frame) { return frame.maxX(); }},
     {Attribute::centerX, [](auto& make) { return make.centerX(); },
      [](auto& frame) { return frame.midX(); }}},
    {{Attribute::top, [](auto& make) { return make.top(); }, [](auto& frame) { return frame.minY(); }},
     {Attribute::bottom, [](auto& make) { return make.bottom(); }, [](auto& frame) { return frame.maxY(); }},
     {Attribute::centerY, [](auto& make) { return make.centerY(); },
      [](auto& frame) { return frame.midY(); }}},
    {{Attribute::width, [](auto& make) { return make.width(); },
      [](auto& frame) { return frame.size.width; }},
     {Attribute::height, [](auto& make) { return make.height(); },
      [](auto& frame) { return frame.size.height; }}}};

/// A line of layout and what it says, in the root's coordinates.
struct Line {
    UIView* view;
    const Measure* measure;
    UIView* target;
    const Measure* targetMeasure;
    double multiplier;
    std::size_t kind; ///< of measures
    UIView* common;   ///< what multiplied places count from

    double rightSide(const auto& frameOf) const {
        const CGPoint common_ = frameOf(*common).origin;
        const double origin = kind == 0 ? common_.x : kind == 1 ? common_.y : 0;
        return multiplier * (targetMeasure->of(frameOf(*target)) - origin) + origin;
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
            const CGPoint outer = this->meant(*superview).origin, scrolled = superview->bounds().origin;
            view->setFrame(meant.offsetBy(scrolled.x - outer.x, scrolled.y - outer.y));
            view->setBounds({{0, *rc::gen::element(0.0, 0.0, 7.0)}, meant.size});
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

/// Where a view lies in the root of its tree.
CGRect frameInRoot(const UIView& view) {
    CGRect frame = view.layoutFrame();
    for (const UIView* superview = view.superview(); superview && superview->superview();
         superview = superview->superview()) {
        const CGPoint outer = superview->layoutFrame().origin, scrolled = superview->bounds().origin;
        frame = frame.offsetBy(outer.x - scrolled.x, outer.y - scrolled.y);
    }
    return frame;
}

Line randomLine(const RandomTree& tree, UIView& view) {
    const auto kind = *rc::gen::inRange<std::size_t>(0, std::size(measures));
    const auto measure = [&] {
        return &measures[kind][*rc::gen::inRange<std::size_t>(0, measures[kind].size())];
    };
    const double multiplier = *rc::gen::element(1.0, 1.0, 1.0, 0.5, 2.0);
    Line line{&view, measure(), &tree.targetFor(view), measure(), multiplier, kind, &view};
    while (!line.target->isDescendant(*line.common))
        line.common = line.common->superview();
    return line;
}

RC_GTEST_PROP(LayoutProperties, LinesThatHaveACommonSolutionAllHold, ()) {
    RandomTree tree;
    const LogCapture log;
    std::vector<std::pair<Line, double>> said;
    const auto meant = [&](const UIView& view) { return tree.meant(view); };
    for (const auto& view : tree.views())
        for (int i = 0; i < tree.lines(*view); ++i) {
            const Line line = randomLine(tree, *view);
            const double constant = line.measure->of(meant(*view)) - line.rightSide(meant);
            view->snp().makeConstraints([&](ConstraintMaker& make) {
                line.measure->say(make)
                    .equalTo(ConstraintItem{*line.target, {line.targetMeasure->attribute}})
                    .multipliedBy(line.multiplier)
                    .offset(constant);
            });
            said.emplace_back(line, constant);
        }
    tree.root().layoutIfNeeded();
    for (const auto& [line, constant] : said) {
        const double left = line.measure->of(frameInRoot(*line.view));
        const double right = line.rightSide(frameInRoot) + constant;
        RC_ASSERT(std::abs(left - right) <= 1e-6);
    }
    RC_ASSERT(log.lines().empty());
}

} // namespace
} // namespace sela
