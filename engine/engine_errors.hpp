#pragma once
// Categories of the engine's failures and the check every parameter value passes
// before it reaches a matrix.
#include <cmath>
#include <string>

#include "core/user_error.hpp"

namespace orvane {

inline constexpr ErrorCategory kRealEngineError = ErrorCategory::RealEngine;
inline constexpr ErrorCategory kComplexEngineError = ErrorCategory::ComplexEngine;
inline constexpr ErrorCategory kCfHamiltonianError = ErrorCategory::CrystalFieldHamiltonian;

// Throws UserError(kRealEngineError) naming `what` when the value is NaN or infinite.
inline void requireFiniteParameter(double value, const std::string& what) {
    if (!std::isfinite(value)) throw UserError(kRealEngineError, what + " is not a finite number");
}

}  // namespace orvane
