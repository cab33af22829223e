#pragma once
// Parameter values by id (engine/parameter_registry.hpp): what the prepared
// model solves for, what a fit varies. Values are those of the actual
// configuration f^n in the parameter set's energy unit, whatever route the
// model takes (the conjugate shell's signs are the model's business).
#include <utility>
#include <vector>

#include "engine/parameter_registry.hpp"
#include "engine/parameter_set.hpp"

namespace orvane {

class ParameterVector {
public:
    void set(ParameterId id, double value);
    double value(ParameterId id) const;  // 0 for an id not set
    bool contains(ParameterId id) const;
    // (id, value) in ascending id.
    const std::vector<std::pair<ParameterId, double>>& entries() const { return entries_; }

    // Ratio links (M2 = 0.56 M0, ...): `withLinksApplied` sets every target
    // from its source.
    std::vector<ParameterLink> links;
    ParameterVector withLinksApplied() const;

private:
    std::vector<std::pair<ParameterId, double>> entries_;
};

// The parameters of a file: E_AVG, F^2, F^4, F^6 (Racah E^k and Slater F_k
// converted), zeta and the other free-ion parameters (multiples such as
// "0.56M0" resolved and recorded as links), and the crystal-field parameters
// in Wybourne's normalisation (Stevens and unit-operator rows converted, the
// cubic relations of "/cubiccf" applied), real parts and, with `complex`,
// imaginary parts. With "/t2correction" T2 is carried by t2' and its e3 part
// by F^k (docs/engine.md). Throws UserError for non-finite values or rows the
// engine cannot apply.
ParameterVector parameterVectorOf(const ParameterSet& set, bool complex);

}  // namespace orvane
