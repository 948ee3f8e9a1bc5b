#pragma once

#include "platform/snapkit/LinearExpression.h"

#include <optional>
#include <vector>

namespace sela {

/// Linear equations solved one at a time, the important ones first: an equation that contradicts those before
/// it is refused and changes nothing. Confined to one thread at a time.
///
/// Elimination by substitution. Every variable is either open, or bound to a definition in which only open
/// variables occur. A new equation has its bound variables replaced by their definitions; of the open ones
/// that remain, the one with the largest coefficient becomes bound and is replaced wherever it occurs. So
/// which equations are kept, and the values, depend on the order of the equations alone.
///
/// Cost: an equation about variables whose values are known takes time in proportion to its terms, however
/// large the system is. A layout whose views are described from the outside in, or from the left to the
/// right, is solved in linear time; one that hangs n open variables on each other before the first of them
/// gets a value costs n * n steps; equations that all relate all variables cost n * n * n.
class LinearSystem {
public:
    /// The result of adding an equation.
    enum class Outcome {
        kept,          ///< it bound a variable
        redundant,     ///< it follows from those before it
        contradiction, ///< those before it exclude it; it was refused
    };

    /// A new open variable.
    Variable addVariable();

    /// Adds the equation `expression` = 0, whose variables must be of this system. Two constants that differ
    /// by less than 1e-9 of the largest number involved (at least 1) count as equal.
    Outcome addEquation(const LinearExpression& expression);

    /// Shorthand for the equation `variable` = `value`.
    Outcome assign(Variable variable, double value);

    /// The value of a variable; absent while it depends on an open one.
    std::optional<double> value(Variable variable) const;

private:
    struct Unknown {
        std::optional<LinearExpression> definition; ///< absent while open
        std::vector<Variable> users; ///< bound variables whose definitions may mention this one
    };

    Unknown& at(Variable variable) { return unknowns_[static_cast<std::size_t>(variable)]; }
    const Unknown& at(Variable variable) const { return unknowns_[static_cast<std::size_t>(variable)]; }
    void bind(Variable variable, LinearExpression definition);

    std::vector<Unknown> unknowns_;
};

} // namespace sela
