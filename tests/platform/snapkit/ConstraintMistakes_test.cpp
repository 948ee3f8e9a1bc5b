#include "platform/snapkit/ConstraintViewDSL.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace sela {
namespace {

using Attribute = ConstraintAttribute;

TEST(ConstraintMistakesDeathTest, StopTheProcessWithTheLineOfSource) {
    UIView root, view, other, orphan;
    root.addSubview(view);
    root.addSubview(other);
    const auto its = [&](const ConstraintAttributes& attributes) {
        return ConstraintItem{other, attributes};
    };
    struct Mistake {
        UIView& view;
        std::function<void(ConstraintMaker& make)> body;
        std::string message;
    };
    const Mistake mistakes[] = {
        {view, [](auto& make) { static_cast<void>(make.top().left()); },
         "Incomplete constraint: it says nothing about its top"},
        {view, [&](auto& make) { make.left().equalTo(its({Attribute::width})); },
         "cannot relate left to width"},
        {view, [&](auto& make) { make.left().equalTo(its({Attribute::top})); }, "cannot relate left to top"},
        {view, [&](auto& make) { make.leading().equalTo(its({Attribute::left})); },
         "cannot relate leading to left"},
        {view, [](auto& make) { make.center().equalTo(CGSize()); }, "relates a place to a size"},
        {view,
         [&](auto& make) {
             make.edges().equalTo(its({Attribute::width, Attribute::height}));
         },
         "different numbers of attributes"},
        {view, [](auto& make) { make.width().equalTo(1).priority(0); },
         "priority lies above 0 and up to 1000"},
        {orphan, [](auto& make) { make.left().equalTo(3); }, "needs a superview"},
        {orphan, [](auto& make) { make.size().equalToSuperview(); }, "needs a superview"},
    };
    for (const Mistake& mistake : mistakes)
        EXPECT_DEATH(mistake.view.snp().makeConstraints(mistake.body),
                     mistake.message + ".*\n.*ConstraintMistakes_test\\.cpp:[0-9]+");
    orphan.snp().makeConstraints([](ConstraintMaker& make) { make.size().equalTo(3); });
}

} // namespace
} // namespace sela
