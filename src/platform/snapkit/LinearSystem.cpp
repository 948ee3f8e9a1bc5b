#include "platform/snapkit/LinearSystem.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace sela {

namespace {

constexpr double tolerance = 1e-9;

Variable largest(const std::vector<Term>& terms) {
    return std::ranges::max_element(terms, {}, [](const Term& term) { return std::abs(term.coefficient); })
        ->variable;
}

} // namespace

Variable LinearSystem::addVariable() {
    unknowns_.emplace_back();
    return static_cast<Variable>(unknowns_.size() - 1);
}

LinearSystem::Outcome LinearSystem::addEquation(const LinearExpression& expression) {
    LinearExpression open(expression.constant());
    double magnitude = std::max(1.0, std::abs(expression.constant()));
    for (const Term& term : expression.terms()) {
        if (const auto& definition = at(term.variable).definition) {
            open.add(*definition, term.coefficient);
            magnitude = std::max(magnitude, std::abs(term.coefficient * definition->constant()));
        } else {
            open.add(term.variable, term.coefficient);
        }
    }
    if (open.terms().empty())
        return std::abs(open.constant()) <= tolerance * magnitude ? Outcome::redundant
                                                                  : Outcome::contradiction;

    const Variable bound = largest(open.terms());
    const double coefficient = open.remove(bound);
    open.multiply(-1 / coefficient);
    bind(bound, std::move(open));
    return Outcome::kept;
}

LinearSystem::Outcome LinearSystem::assign(Variable variable, double value) {
    return addEquation(LinearExpression(variable).add(-value));
}

std::optional<double> LinearSystem::value(Variable variable) const {
    const auto& definition = at(variable).definition;
    if (!definition || !definition->terms().empty())
        return std::nullopt;
    return definition->constant();
}

void LinearSystem::bind(Variable variable, LinearExpression definition) {
    const std::vector<Variable> users = std::exchange(at(variable).users, {});
    for (const Variable user : users) {
        LinearExpression& used = *at(user).definition;
        const double coefficient = used.remove(variable);
        if (coefficient == 0)
            continue;
        for (const Term& term : definition.terms())
            if (used.coefficient(term.variable) == 0)
                at(term.variable).users.push_back(user);
        used.add(definition, coefficient);
    }
    for (const Term& term : definition.terms())
        at(term.variable).users.push_back(variable);
    at(variable).definition = std::move(definition);
}

} // namespace sela
