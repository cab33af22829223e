#pragma once
// Reduced matrix elements of the crystal-field operators within each
// free-ion level (J multiplet): <a J || C(k) || a J> = <f||C(k)||f> <a J||U(k)||a J>,
// k = 2, 4, 6, with U(k) carried into the free-ion eigenbasis.
// On the conjugate route the tables of f^(14-n) give U(k) of the opposite
// sign for even k (U(k) of f^n = -U(k) of f^(14-n)); the elements are
// returned for the actual f^n.
#include <array>
#include <vector>

#include "engine/crystal_field.hpp"

namespace orvane {

struct MultipletElements {
    int level = 0;  // free-ion level index
    int twiceJ = 0;
    std::array<double, 3> reducedCk{};  // k = 2, 4, 6
};

std::vector<MultipletElements> multipletCrystalFieldElements(const TransformedTensors& tensors, bool conjugate);

}  // namespace orvane
