#include "platform/snapkit/LinearSystem.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>
#include <vector>

namespace sela {
namespace {

using Outcome = LinearSystem::Outcome;
using Values = std::map<Variable, double>;

TEST(LinearSystem, TellsWhatContradictsFromWhatIsRounded) {
    LinearSystem system;
    const Variable left = system.addVariable(), right = system.addVariable();
    const LinearExpression distance = LinearExpression(right).add(left, -1).add(-20);
    const auto longer = [&](double rest) { return LinearExpression(distance).add(-rest); };
    EXPECT_EQ(system.addEquation(distance), Outcome::kept);
    EXPECT_EQ(system.addEquation(longer(1e-12)), Outcome::redundant);
    EXPECT_EQ(system.addEquation(longer(1e-4)), Outcome::contradiction);
}

TEST(LinearSystem, TakesNoUnknownForWhatRoundingLeftOfIt) {
    LinearSystem system;
    const Variable base = system.addVariable();
    LinearExpression sum(1);
    for (const double part : {1.0, -0.999999, -0.000001}) {
        const Variable variable = system.addVariable();
        EXPECT_EQ(system.addEquation(LinearExpression(variable).add(base, -part)), Outcome::kept);
        sum.add(variable, 1);
    }
    // The sum of the parts is not quite 0.
    EXPECT_EQ(system.addEquation(sum), Outcome::contradiction);
}

/// A system of up to 29 variables and a solution that equations may be made to have.
struct Unknowns {
    LinearSystem system;
    Values solution;

    Unknowns() {
        for (int left = *rc::gen::inRange(1, 30); left > 0; --left)
            solution[system.addVariable()] = *rc::gen::inRange(-1000, 1000) * 0.5;
    }

    LinearExpression randomEquation() const {
        LinearExpression equation(*rc::gen::inRange(-400, 400) * 0.25);
        for (int terms = *rc::gen::inRange(1, 5); terms > 0; --terms)
            equation.add(static_cast<Variable>(*rc::gen::inRange<std::size_t>(0, solution.size())),
                         *rc::gen::element(-1.0, 1.0, -0.5, 0.5, 2.0, 0.1, 1.0 / 3));
        return equation;
    }
};

/// The residual of an equation, and the largest number in it.
std::pair<double, double> residual(const LinearExpression& equation, const Values& values) {
    double sum = equation.constant();
    double largest = std::max(1.0, std::abs(sum));
    for (const Term& term : equation.terms()) {
        const double summand = term.coefficient * values.at(term.variable);
        sum += summand;
        largest = std::max(largest, std::abs(summand));
    }
    return {sum, largest};
}

RC_GTEST_PROP(LinearSystemProperties, EveryEquationThatIsNotRefusedHolds, ()) {
    Unknowns unknowns;
    std::vector<LinearExpression> accepted;
    for (int left = *rc::gen::inRange(1, 40); left > 0; --left) {
        LinearExpression equation = unknowns.randomEquation();
        if (unknowns.system.addEquation(equation) != Outcome::contradiction)
            accepted.push_back(std::move(equation));
    }
    for (const auto& [variable, ignored] : unknowns.solution)
        unknowns.system.assign(variable, 0); // what is still open
    Values values;
    for (const auto& [variable, ignored] : unknowns.solution)
        values[variable] = unknowns.system.value(variable).value();
    for (const LinearExpression& equation : accepted) {
        const auto [rest, largest] = residual(equation, values);
        RC_ASSERT(std::abs(rest) <= 1e-7 * largest);
    }
}

RC_GTEST_PROP(LinearSystemProperties, EquationsWithACommonSolutionAreNeverRefused, ()) {
    Unknowns unknowns;
    for (int left = *rc::gen::inRange(1, 60); left > 0; --left) {
        LinearExpression equation = unknowns.randomEquation();
        equation.add(-residual(equation, unknowns.solution).first);
        RC_ASSERT(unknowns.system.addEquation(equation) != Outcome::contradiction);
    }
    for (const auto& [variable, solution] : unknowns.solution)
        if (const auto value = unknowns.system.value(variable))
            RC_ASSERT(std::abs(*value - solution) <= 1e-5);
}

} // namespace
} // namespace sela
