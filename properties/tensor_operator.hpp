#pragma once
// A tensor operator T(k) on the |SL J MJ> basis, given by its reduced
// elements <SL J || T(k) || S'L' J'> between the |SL J> states, and its
// matrix elements between eigenstates by the Wigner-Eckart theorem
// (docs/conventions.md):
//   <SLJ M | T(k)_q | S'L'J' M'> = (-1)^(J-M) (J k J'; -M q M') <SLJ||T(k)||S'L'J'>.
//
// For one bra state i the row r_q(b) = <i|T(k)_q|b> over every basis state b
// is built once; an element <i|T_q|j> is then the contraction of that row
// with state j's coefficients, and a whole group of states is done by one
// matrix product (properties/property_states.hpp).
#include <complex>
#include <utility>
#include <vector>

#include <Eigen/Dense>

#include "properties/property_states.hpp"

namespace orvane {

class TensorOperator {
public:
    // `reduced` is indexed by the |SL J> states of `states.jBasis`.
    TensorOperator(const PropertyStates& states, int rank, const Eigen::MatrixXd& reduced);

    int rank() const { return rank_; }
    double reduced(int jState, int otherJState) const { return reduced_(jState, otherJState); }

    // Rows r_q(b) = <i|T_q|b>, q = -k..k as columns 0..2k (basis x (2k+1)).
    Eigen::MatrixXcd braRows(int state) const;

    // <i|T_q|j> for the columns of `rows` (any set of rows over the basis)
    // and every state j: result states x columns.
    Eigen::MatrixXcd contract(const Eigen::MatrixXcd& rows) const;
    // The same for one state j only: a row of `rows.cols()` elements.
    Eigen::RowVectorXcd contractWith(const Eigen::MatrixXcd& rows, int state) const;

private:
    const PropertyStates* states_;
    int rank_;
    Eigen::MatrixXd reduced_;
    std::vector<std::vector<std::pair<int, double>>> nonZero_;  // per |SL J> state: (J' state, reduced element)
    int maxTwiceJ_ = 0;
    std::vector<double> threeJ_;  // (J k J'; -M q M') by (2J, 2J', 2M index, q)
    double threeJ(int twiceJ, int twiceJp, int twiceM, int q) const;
};

// Cartesian components of a vector operator (rank 1) from its spherical
// rows: a_z = a_0, a_x = (a_-1 - a_+1)/sqrt 2, a_y = i (a_-1 + a_+1)/sqrt 2.
// Columns of `spherical` are q = -1, 0, +1; result columns x, y, z.
Eigen::MatrixXcd cartesianFromSpherical(const Eigen::MatrixXcd& spherical);

}  // namespace orvane
