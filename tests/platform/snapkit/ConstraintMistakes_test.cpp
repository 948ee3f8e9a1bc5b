#include "platform/snapkit/ConstraintViewDSL.h"

#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>

namespace sela {
namespace {

struct Mistake {
    const char* name;
    std::function<void(ConstraintMaker& make, const UIView& other)> body;
    const char* message;
};

void PrintTo(const Mistake& mistake, std::ostream* stream) {
    *stream << mistake.name;
}

class ConstraintMistakes : public testing::TestWithParam<Mistake> {};

TEST_P(ConstraintMistakes, StopTheProcessWithTheLineOfSource) {
    UIView root, view, other;
    root.addSubview(view);
    root.addSubview(other);
    EXPECT_DEATH(view.snp().makeConstraints([&](ConstraintMaker& make) { GetParam().body(make, other); }),
                 std::string(GetParam().message) + ".*\n.*ConstraintMistakes_test\\.cpp:[0-9]+");
}

INSTANTIATE_TEST_SUITE_P(
    All, ConstraintMistakes,
    testing::Values(Mistake{"NoRelation", [](auto& make, auto&) { static_cast<void>(make.top().left()); },
                            "Incomplete constraint: it says nothing about its top"},
                    Mistake{"PlaceToSize",
                            [](auto& make, auto& other) {
                                make.left().equalTo(ConstraintItem{other, {ConstraintAttribute::width}});
                            },
                            "cannot relate left to width"},
                    Mistake{"OtherAxis",
                            [](auto& make, auto& other) {
                                make.left().equalTo(ConstraintItem{other, {ConstraintAttribute::top}});
                            },
                            "cannot relate left to top"},
                    Mistake{"ReadingToSide",
                            [](auto& make, auto& other) {
                                make.leading().equalTo(ConstraintItem{other, {ConstraintAttribute::left}});
                            },
                            "cannot relate leading to left"},
                    Mistake{"PlaceToConstantSize",
                            [](auto& make, auto&) {
                                make.center().equalTo(CGSize{1, 2});
                            },
                            "relates a place to a size"},
                    Mistake{"DifferentComposites",
                            [](auto& make, auto& other) {
                                make.edges().equalTo(ConstraintItem{
                                    other, {ConstraintAttribute::centerX, ConstraintAttribute::centerY}});
                            },
                            "different numbers of attributes"},
                    Mistake{"PriorityTooHigh",
                            [](auto& make, auto&) { make.width().equalTo(1).priority(1001); },
                            "priority lies above 0 and up to 1000"},
                    Mistake{"PriorityZero", [](auto& make, auto&) { make.width().equalTo(1).priority(0); },
                            "priority lies above 0 and up to 1000"}),
    testing::PrintToStringParamName());

TEST(ConstraintMistakesDeathTest, APlaceNeedsASuperview) {
    UIView orphan;
    EXPECT_DEATH(orphan.snp().makeConstraints([](ConstraintMaker& make) { make.left().equalTo(3); }),
                 "needs a superview.*\n.*ConstraintMistakes_test");
    EXPECT_DEATH(orphan.snp().makeConstraints([](ConstraintMaker& make) { make.size().equalToSuperview(); }),
                 "needs a superview.*\n.*ConstraintMistakes_test");
    orphan.snp().makeConstraints([](ConstraintMaker& make) { make.size().equalTo(3); });
}

} // namespace
} // namespace sela
