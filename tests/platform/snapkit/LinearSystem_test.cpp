#include "platform/snapkit/LinearSystem.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace sela {
namespace {

using Outcome = LinearSystem::Outcome;

LinearExpression difference(Variable a, Variable b, double constant = 0) {
    return LinearExpression(a).add(b, -1).add(constant);
}

TEST(LinearExpression, MergesTermsAndForgetsThoseThatCancel) {
    const Variable a{0}, b{1}, c{2};
    LinearExpression sum(c, 2);
    sum.add(a, 3).add(b, 0.1).add(b, 0.2).add(c, -2).add(4);
    ASSERT_EQ(sum.terms().size(), 2u);
    EXPECT_EQ(sum.coefficient(c), 0);

    // 0.1 + 0.2 is not 0.3 in binary; the rest must still count as nothing.
    sum.add(LinearExpression(b, 0.1).add(1), -3);
    EXPECT_EQ(sum.coefficient(b), 0);
    EXPECT_EQ(sum.constant(), 1);
    EXPECT_EQ(sum.remove(a), 3);
    EXPECT_TRUE(sum.terms().empty());
}

TEST(LinearSystem, RefusesWhatContradictsAndRecognisesWhatFollows) {
    LinearSystem system;
    const Variable left = system.addVariable(), right = system.addVariable(), width = system.addVariable();
    EXPECT_EQ(system.addEquation(difference(right, left).add(width, -1)), Outcome::kept);
    EXPECT_EQ(system.assign(width, 20), Outcome::kept);
    EXPECT_EQ(system.assign(width, 18), Outcome::contradiction);
    EXPECT_EQ(system.assign(width, 20 + 1e-12), Outcome::redundant);
    EXPECT_EQ(system.addEquation(difference(right, left, -20)), Outcome::redundant);
    EXPECT_EQ(system.addEquation(difference(right, left, -21)), Outcome::contradiction);
    EXPECT_EQ(system.value(right), std::nullopt);
    EXPECT_EQ(system.assign(left, 7), Outcome::kept);
    EXPECT_EQ(system.value(right), 27);
    EXPECT_EQ(system.value(width), 20);
}

TEST(LinearSystem, ResolvesAChainWhoseAnchorComesLast) {
    LinearSystem system;
    std::vector<Variable> chain{system.addVariable()};
    for (int i = 1; i < 200; ++i) {
        chain.push_back(system.addVariable());
        EXPECT_EQ(system.addEquation(difference(chain[i - 1], chain[i], 0.1)), Outcome::kept);
    }
    EXPECT_EQ(system.value(chain.front()), std::nullopt);
    EXPECT_EQ(system.assign(chain.back(), 100), Outcome::kept);
    EXPECT_NEAR(system.value(chain.front()).value(), 100 - 19.9, 1e-9);
    EXPECT_EQ(system.addEquation(difference(chain.front(), chain.back(), 19.9)), Outcome::redundant);
    EXPECT_EQ(system.addEquation(difference(chain.front(), chain.back(), 19.8999)), Outcome::contradiction);
}

} // namespace
} // namespace sela
