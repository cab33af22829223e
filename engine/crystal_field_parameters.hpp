#pragma once
// The crystal-field parameters of a parameter set as the engine applies them.
#include <vector>

#include "engine/crystal_field.hpp"
#include "engine/parameter_set.hpp"

namespace orvane {

// The crystal-field keys and values of a set (Wybourne B(k,q), k = 2, 4, 6,
// 0 <= q <= k; a later row of the same k, q replaces an earlier one; zero rows
// dropped), then the rows of its correlation crystal-field sections (keys with
// their operator). Throws UserError for an invalid rank or q, an imaginary
// part when `complex` is false (the real engine would compute another crystal
// field), or a q the fold cannot carry.
//
// Conventions: Stevens rows A(q,k)<r^k> (and the sine-type A(-q,k)<r^k> in
// the imaginary column) and unit-operator rows B(k,q)(U) are turned into
// Wybourne B(k,q) first with the factors of params/cf_conventions.hpp
// (1/lambda(k,q), -1/lambda(k,q) for the imaginary column, 1/c_k). The
// correlation rows are parameters of their operators as they stand.
//
// Cubic crystal field ("/cubiccf"): B(4,0) and B(6,0) are the independent
// parameters; the others are set by the cubic relations of
// params/cubic_approximation.hpp and every other crystal-field row is
// dropped. Fold 1, 2 or 4: main axis [001], B(4,4) = sqrt(5/14) B(4,0),
// B(6,4) = -sqrt(7/2) B(6,0). Fold 3: main axis [111],
// B(4,3) = sqrt(10/7) B(4,0), B(6,3) = -(1/4) sqrt(35/6) B(6,0),
// B(6,6) = (1/8) sqrt(77/3) B(6,0). Other folds are refused.
//
// Conjugate route (n > 7 through f^(14-n)): every B(k,q) changes sign (U(k),
// k even, changes sign); the spin-correlated c(k,q) keep theirs (built from
// V(1k), k even, which does not); the L-correlated and orthogonal
// correlation operators are read from the tables of the actual f^n (same
// term labels and phases as f^(14-n)) and keep theirs too.
struct CrystalFieldValues {
    std::vector<CrystalFieldKey> keys;
    std::vector<double> re;
    std::vector<double> im;
};
CrystalFieldValues crystalFieldParametersOf(const ParameterSet& set, bool conjugate, bool complex);

// The crystal-field rows in Wybourne's convention (Stevens and unit-operator
// rows converted; values and texts both), cubic relations not applied.
std::vector<CrystalFieldRow> wybourneRowsOf(const ParameterSet& set);

// The Wybourne rows of the cubic field with the given B(4,0) and B(6,0) along
// the axis that the fold selects (see above); throws UserError for another fold.
std::vector<CrystalFieldRow> cubicCrystalFieldRows(double b40, double b60, int fold);

// The engine's operator of a correlation section.
CrystalFieldOperator operatorOf(CorrelationKind kind);

}  // namespace orvane
