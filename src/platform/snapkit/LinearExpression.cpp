#include "platform/snapkit/LinearExpression.h"

#include <algorithm>
#include <cmath>

namespace sela {

namespace {

// Coefficients whose sum is this small beside the largest of them were meant to cancel out: what is left is
// their rounding.
constexpr double cancellation = 1e-9;

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
    add({variable, coefficient, std::abs(coefficient)});
    return *this;
}

LinearExpression& LinearExpression::add(const LinearExpression& other, double factor) {
    for (const Term& term : other.terms_)
        add({term.variable, factor * term.coefficient, std::abs(factor) * term.magnitude});
    return add(factor * other.constant_);
}

void LinearExpression::add(const Term& term) {
    if (term.coefficient == 0)
        return;
    const auto found = position(terms_, term.variable);
    if (found == terms_.end() || found->variable != term.variable) {
        terms_.insert(found, term);
        return;
    }
    found->coefficient += term.coefficient;
    found->magnitude = std::max(found->magnitude, term.magnitude);
    if (std::abs(found->coefficient) <= cancellation * found->magnitude)
        terms_.erase(found);
}

LinearExpression& LinearExpression::multiply(double factor) {
    if (factor == 0)
        terms_.clear();
    for (Term& term : terms_) {
        term.coefficient *= factor;
        term.magnitude *= std::abs(factor);
    }
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
