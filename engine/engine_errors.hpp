#pragma once
// Titles of the engine's failures and the check every parameter value passes
// before it reaches a matrix.
#include <cmath>
#include <string>

#include "core/user_error.hpp"

namespace orvane {

inline constexpr const char* kRealEngineError = "Error in real CF main program";
inline constexpr const char* kComplexEngineError = "Error in main program for complex CF";
inline constexpr const char* kCfHamiltonianError = "Error in CF Hamiltonian";

// Throws UserError(kRealEngineError) naming `what` when the value is NaN or infinite.
inline void requireFiniteParameter(double value, const std::string& what) {
    if (!std::isfinite(value)) throw UserError(kRealEngineError, what + " is not a finite number");
}

}  // namespace orvane
