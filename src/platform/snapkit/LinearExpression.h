#pragma once

#include <cstdint>
#include <vector>

namespace sela {

/// An unknown of a `LinearSystem`, by its number there.
enum class Variable : std::uint32_t {};

/// A variable times a coefficient that is not zero.
struct Term {
    Variable variable;
    double coefficient;
    double magnitude; ///< of the largest summand of the coefficient, by which its rounding is judged
};

/// A sum of terms and a constant. A value, confined to one thread at a time.
class LinearExpression {
public:
    LinearExpression() = default;
    explicit LinearExpression(double constant) : constant_(constant) {}
    explicit LinearExpression(Variable variable, double coefficient = 1) { add(variable, coefficient); }

    double constant() const { return constant_; }

    /// The terms in the order of their variables, each variable once.
    const std::vector<Term>& terms() const { return terms_; }

    /// The coefficient of `variable`; 0 when it does not occur.
    double coefficient(Variable variable) const;

    LinearExpression& add(double constant);
    LinearExpression& add(Variable variable, double coefficient);

    /// Adds `factor` times `other`.
    LinearExpression& add(const LinearExpression& other, double factor = 1);

    LinearExpression& multiply(double factor);

    /// Takes the term of `variable` out and returns its coefficient; 0 when it does not occur.
    double remove(Variable variable);

private:
    void add(const Term& term);

    std::vector<Term> terms_;
    double constant_ = 0;
};

} // namespace sela
