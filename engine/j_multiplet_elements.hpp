#pragma once
// Reduced matrix elements of the crystal-field operators within each
// free-ion level (J multiplet): <a J || C(k) || a J> = <f||C(k)||f> <a J||U(k)||a J>,
// k = 2, 4, 6, with U(k) carried into the free-ion eigenbasis.
// On the conjugate route the tables of f^(14-n) give U(k) of the opposite
// sign for even k (U(k) of f^n = -U(k) of f^(14-n)); the elements are
// returned for the actual f^n.
//
// When the run has correlation crystal-field parameters, the diagonal reduced
// elements <a J || X(k) || a J> of their operators follow, as the engine holds
// them (engine/correlation_crystal_field.hpp: no <f||C(k)||f> factor, and no
// sign change on the conjugate route, where the SCCF tables are the same and
// the LCCF and OCCF tables are those of the actual f^n), one column per
// operator and rank present, labelled "<||VS(k)||>" (spin-correlated),
// "<||VL(k)||>" (L-correlated), "<||VG(k)||>" (orthogonal correlation, either
// table form).
#include <array>
#include <string>
#include <vector>

#include "engine/crystal_field.hpp"

namespace orvane {

struct LabelledElement {
    std::string label;  // e.g. "<||VS(2)||>"
    double value = 0.0;
};

struct MultipletElements {
    int level = 0;  // free-ion level index
    int twiceJ = 0;
    std::array<double, 3> reducedCk{};  // k = 2, 4, 6
    std::vector<LabelledElement> correlation;  // the same columns for every level
};

std::vector<MultipletElements> multipletCrystalFieldElements(const TransformedTensors& tensors, bool conjugate);

}  // namespace orvane
