#include "platform/snapkit/LinearSystem.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <vector>

namespace sela {
namespace {

using Outcome = LinearSystem::Outcome;

/// An equation as a test makes it: coefficients of a few variables out of `variables`.
LinearExpression randomEquation(int variables) {
    LinearExpression equation(*rc::gen::inRange(-400, 400) * 0.25);
    const int terms = *rc::gen::inRange(1, 5);
    for (int i = 0; i < terms; ++i) {
        const auto variable = static_cast<Variable>(*rc::gen::inRange(0, variables));
        equation.add(variable, *rc::gen::element(-1.0, 1.0, -0.5, 0.5, 2.0, 0.1, 1.0 / 3));
    }
    return equation;
}

double residual(const LinearExpression& equation, const std::vector<double>& values) {
    double sum = equation.constant();
    for (const Term& term : equation.terms())
        sum += term.coefficient * values[static_cast<std::size_t>(term.variable)];
    return sum;
}

double magnitude(const LinearExpression& equation, const std::vector<double>& values) {
    double largest = std::max(1.0, std::abs(equation.constant()));
    for (const Term& term : equation.terms())
        largest =
            std::max(largest, std::abs(term.coefficient * values[static_cast<std::size_t>(term.variable)]));
    return largest;
}

/// Gives every variable that is still open the value 0 and returns all values.
std::vector<double> settle(LinearSystem& system, int variables) {
    std::vector<double> values;
    for (int i = 0; i < variables; ++i)
        system.assign(static_cast<Variable>(i), 0);
    for (int i = 0; i < variables; ++i)
        values.push_back(system.value(static_cast<Variable>(i)).value());
    return values;
}

RC_GTEST_PROP(LinearSystemProperties, EveryEquationThatIsNotRefusedHolds, ()) {
    const int variables = *rc::gen::inRange(1, 30);
    LinearSystem system;
    for (int i = 0; i < variables; ++i)
        system.addVariable();
    std::vector<LinearExpression> accepted;
    const int equations = *rc::gen::inRange(1, 40);
    for (int i = 0; i < equations; ++i) {
        LinearExpression equation = randomEquation(variables);
        if (system.addEquation(equation) != Outcome::contradiction)
            accepted.push_back(std::move(equation));
    }
    const std::vector<double> values = settle(system, variables);
    for (const LinearExpression& equation : accepted)
        RC_ASSERT(std::abs(residual(equation, values)) <= 1e-7 * magnitude(equation, values));
}

RC_GTEST_PROP(LinearSystemProperties, EquationsWithACommonSolutionAreNeverRefused, ()) {
    const int variables = *rc::gen::inRange(1, 30);
    LinearSystem system;
    std::vector<double> solution;
    for (int i = 0; i < variables; ++i) {
        system.addVariable();
        solution.push_back(*rc::gen::inRange(-1000, 1000) * 0.5);
    }
    const int equations = *rc::gen::inRange(1, 60);
    for (int i = 0; i < equations; ++i) {
        LinearExpression equation = randomEquation(variables);
        equation.add(-residual(equation, solution));
        RC_ASSERT(system.addEquation(equation) != Outcome::contradiction);
    }
    for (int i = 0; i < variables; ++i)
        if (const auto value = system.value(static_cast<Variable>(i)))
            RC_ASSERT(std::abs(*value - solution[static_cast<std::size_t>(i)]) <= 1e-6);
}

} // namespace
} // namespace sela
