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
    EXPECT_EQ(sum.coefficient(a), 3);
    EXPECT_NEAR(sum.coefficient(b), 0.3, 1e-15);
    EXPECT_EQ(sum.coefficient(c), 0);

    // 0.1 + 0.2 is not 0.3 in binary; the rest must still count as nothing.
    sum.add(LinearExpression(b, 0.1).add(1), -3);
    EXPECT_EQ(sum.coefficient(b), 0);
    EXPECT_EQ(sum.constant(), 1);

    EXPECT_EQ(sum.remove(a), 3);
    EXPECT_EQ(sum.remove(a), 0);
    EXPECT_TRUE(sum.terms().empty());
}

TEST(LinearSystem, SolvesAPublishedSystem) {
    // 2x + y - z = 8, -3x - y + 2z = -11, -2x + y + 2z = -3 has the solution 2, 3, -1.
    LinearSystem system;
    const Variable x = system.addVariable(), y = system.addVariable(), z = system.addVariable();
    system.addEquation(LinearExpression(x, 2).add(y, 1).add(z, -1).add(-8));
    system.addEquation(LinearExpression(x, -3).add(y, -1).add(z, 2).add(11));
    EXPECT_EQ(system.value(x), std::nullopt);
    system.addEquation(LinearExpression(x, -2).add(y, 1).add(z, 2).add(3));
    EXPECT_NEAR(system.value(x).value(), 2, 1e-12);
    EXPECT_NEAR(system.value(y).value(), 3, 1e-12);
    EXPECT_NEAR(system.value(z).value(), -1, 1e-12);
}

TEST(LinearSystem, RefusesWhatContradictsAndRecognisesWhatFollows) {
    LinearSystem system;
    const Variable left = system.addVariable(), right = system.addVariable(), width = system.addVariable();
    const LinearExpression shape = difference(right, left).add(width, -1);
    EXPECT_EQ(system.addEquation(shape), Outcome::kept);
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

TEST(LinearSystem, AnEquationWithoutVariablesIsJudgedByItsConstant) {
    LinearSystem system;
    EXPECT_EQ(system.addEquation(LinearExpression(0.0)), Outcome::redundant);
    EXPECT_EQ(system.addEquation(LinearExpression(1.0)), Outcome::contradiction);
    const Variable x = system.addVariable();
    EXPECT_EQ(system.addEquation(difference(x, x, 3)), Outcome::contradiction);
    EXPECT_EQ(system.value(x), std::nullopt);
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
