#pragma once

#include <cstdint>
#include <memory_resource>
#include <span>
#include <vector>

#include "qellib10/quantity/formula_program.h"

namespace qel {

/// The value of a formula with its partial derivatives, by automatic differentiation backwards: the steps are carried
/// out and kept, then gone through from the last to the first, which takes a few times as long as the value alone,
/// however many variables there are. The derivatives are exact but for rounding; one whose parts cancel to no more than
/// what rounding may have left of them is 0.
///
/// Where a formula has no derivative:
///
///     sqrt(x) at 0, x^y with x = 0 and y < 1    not defined, an error with its place; also y of x^y where x < 0
///     abs(x) at 0        1, so that an uncertainty is not lost
///     min, max           of the operand that is taken; several equal ones share it
///     round              1: that of the argument; rounding belongs to how a result is shown
///     conditions         0: the derivative is that of the side that was taken
///
/// One object serves many evaluations without allocating again. The program must outlive it.
class FormulaGradient {
public:
    explicit FormulaGradient(const FormulaProgram& program,
                             std::pmr::memory_resource* memory = std::pmr::get_default_resource());

    /// @param values by slot, one for each variable of the program
    /// @param isActive by slot: whether the derivative by the variable is wanted; a derivative that does not exist
    /// counts only where such a variable has a part in it
    /// @return the value
    /// @throws FormulaError
    double Evaluate(std::span<const double> values, std::span<const unsigned char> isActive);

    /// Of the last evaluation, by slot; 0 where it was not wanted.
    std::span<const double> Partials() const { return m_partials; }

    /// Where the formula may bend or jump: the operands of a comparison, and of min and max the one that was taken and
    /// another. One of them depends on a variable whose derivative was wanted.
    struct Bend {
        std::uint32_t left, right;  // nodes; right is kZero for abs
    };
    static constexpr std::uint32_t kZero = UINT32_MAX;

    /// A rounding of what depends on a variable whose derivative was wanted.
    struct Rounding {
        std::uint32_t operand, rounded;  // nodes
        std::size_t rule;                // of the program
        bool isOwn;                      // not of another formula
        double derivative = 0.0;         // of the result by what is rounded
    };

    /// Of the last evaluation, in its order; those of other formulas are found where these are evaluated.
    std::span<const Bend> Bends() const { return m_bends; }
    /// Of all formulas.
    std::span<const Rounding> Roundings() const { return m_roundings; }
    /// Makes Partials those of the difference of both operands.
    /// @return the difference
    /// @throws FormulaError
    double DifferentiateBend(const Bend& bend);

    /// At most, of the value of the last evaluation, by rounding in double arithmetic.
    double Error() const { return m_error; }

    /// Whether a value or derivative of the last evaluation was other than 0 and below what a double has, so that the
    /// derivatives may be too small.
    bool HasUnderflow() const { return m_hasUnderflow; }

private:
    struct Node {  // a step that was carried out
        double value;
        double error;    // at most, of the value by rounding
        double adjoint;  // of the result by this value
        double noise;    // at most, of the adjoint by rounding
        const FormulaStep* step;
        std::uint32_t left, right;  // nodes; of several operands left is where they begin in m_operands
        bool isActive;
    };
    class Recording;

    void GoBackwards();
    void NoteUnderflow(double value, bool isNotZero);
    void PassOne(const Node& node);
    void PassTwo(const Node& node);
    void PassMany(const Node& node);
    // error: at most, of the derivative
    void Pass(const Node& node, Node& operand, double derivative, double error);

    const FormulaProgram& m_program;
    std::pmr::vector<Node> m_nodes;
    std::pmr::vector<std::uint32_t> m_operands;  // nodes, of min, max, mean, sum
    std::pmr::vector<double> m_partials;
    std::pmr::vector<Bend> m_bends;
    std::pmr::vector<Rounding> m_roundings;
    std::pmr::vector<double> m_noises;  // of the partials
    double m_error = 0.0;
    bool m_hasUnderflow = false;
};

}  // namespace qel
