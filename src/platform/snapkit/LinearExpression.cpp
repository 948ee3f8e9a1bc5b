#include "platform/snapkit/LinearExpression.h"

#include <algorithm>
#include <cmath>

namespace sela {

namespace {

// Two coefficients whose sum is this small beside them were meant to cancel out.
constexpr double cancellation = 1e-12;

bool cancel(double a, double b) {
    return std::abs(a + b) <= cancellation * std::max(std::abs(a), std::abs(b));
}

template<class Terms>
auto position(Terms& terms, Variable variable) {
    return std::ranges::lower_bound(terms, variable, {}, &Term::variable);
}

} // namespace

double LinearExpression::coefficient(Variable variable) const {
    const auto found = position(terms_, variable);
    return found != terms_.end() && found->variable == variable ? found->coefficient : 0;
}

LinearExpression& LinearExpression::add(double constant) {
    constant_ += constant;
    return *this;
}

LinearExpression& LinearExpression::add(Variable variable, double coefficient) {
    if (coefficient == 0)
        return *this;
    const auto found = position(terms_, variable);
    if (found == terms_.end() || found->variable != variable)
        terms_.insert(found, {variable, coefficient});
    else if (cancel(found->coefficient, coefficient))
        terms_.erase(found);
    else
        found->coefficient += coefficient;
    return *this;
}

LinearExpression& LinearExpression::add(const LinearExpression& other, double factor) {
    for (const Term& term : other.terms_)
        add(term.variable, factor * term.coefficient);
    return add(factor * other.constant_);
}

LinearExpression& LinearExpression::multiply(double factor) {
    if (factor == 0)
        terms_.clear();
    for (Term& term : terms_)
        term.coefficient *= factor;
    constant_ *= factor;
    return *this;
}

double LinearExpression::remove(Variable variable) {
    const auto found = position(terms_, variable);
    if (found == terms_.end() || found->variable != variable)
        return 0;
    const double coefficient = found->coefficient;
    terms_.erase(found);
    return coefficient;
}

} // namespace sela
