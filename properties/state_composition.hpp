#pragma once
// What a state is made of, and the magnetic-moment matrix elements between
// states (docs/properties.md).
//
// Basis labels: crystal-field states over |SL J MJ> as "[S]La 2J 2M>" for
// an odd number of electrons (half-integral J shown doubled) and
// "[S]La J M>" for an even number; free-ion multiplets over |SL J> as
// "|[S]La 2J>" and "|[S]La J>". [S]La is the term label ("4I", "2D1").
#include <complex>
#include <string>
#include <vector>

#include <Eigen/Dense>

#include "properties/property_states.hpp"
#include "properties/tensor_operator.hpp"

namespace orvane {

struct CompositionLine {
    std::string label;
    std::complex<double> coefficient;
};

struct StateComposition {
    int state = 0;
    double energy = 0.0;  // cm^-1 above the lowest state
    std::vector<CompositionLine> lines;  // |c| >= the minimum, decreasing |c|
    double subtotal = 0.0;               // sum of |c|^2 of the lines
};

// The label of a basis state (|SL J MJ> index, or for free-ion states its |SL J> state).
std::string compositionLabel(const PropertyStates& states, int basisIndex);

// Components of |c| >= minComponent (0 <= minComponent < 1); free-ion states
// list their |SL J> components.
StateComposition stateComposition(const PropertyStates& states, int state, double minComponent);

struct MomentRow {
    int j = 0;                 // state number, 0-based
    Eigen::Vector3cd element;  // <i|m_a|j>, a = x, y, z, in mu_B (m = L + g_s S)
};

// <i|m_a|j> for j = first..last (0-based, inclusive, clipped to the states).
std::vector<MomentRow> momentRows(const PropertyStates& states, const TensorOperator& moment, int initial,
                                  int first, int last);

}  // namespace orvane
