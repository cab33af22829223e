#pragma once
// The levels of a parameter set in memory, for scripts (docs/python.md): the
// prepared model of the set (engine/model.hpp) solved once, with the
// energies, labels, eigenvectors over the |SL J MJ> basis and the derivatives
// of the energies by every parameter the model has an operator for. Nothing
// is written to disk; the Python module hands these arrays to numpy without
// copying them.
#include <filesystem>
#include <string>
#include <vector>

#include <Eigen/Dense>

#include "engine/model.hpp"
#include "engine/parameter_set.hpp"
#include "properties/property_states.hpp"

namespace orvane {

struct ScriptRunOptions {
    bool complex = false;      // Hermitian blocks with Im B(k,q)
    bool vectors = true;       // eigenvectors and labels
    bool derivatives = true;   // dE/dp of every level
};

struct ScriptLevels {
    std::string unit;                     // energy unit of the set ("cm-1", ...)
    Eigen::VectorXd energies;             // ascending, one per state
    Eigen::VectorXi twiceMu;              // twice the crystal quantum number of each state's block
    std::vector<std::string> labels;      // largest multiplet ("3H4"), with vectors only
    std::vector<std::string> basis;       // "|3H 4 -3>": the rows of the vectors
    Eigen::MatrixXd vectors;              // basis x states, real run with vectors
    Eigen::MatrixXcd complexVectors;      // basis x states, complex run with vectors
    // states x parameters: dE/dp (Hellmann-Feynman) of the mean energy of
    // each state's degenerate level, in the parameter's own form (F^k,
    // Wybourne B(k,q)) and the set's energy unit.
    Eigen::MatrixXd derivatives;
    std::vector<std::string> parameterNames;  // "F2", "ZETA", "B43", "ImB43", ...
};

// Throws UserError for a set the engine refuses or missing tables.
ScriptLevels computeScriptLevels(const ParameterSet& set, const ScriptRunOptions& options,
                                 const std::filesystem::path& tableDirectory);

// The crystal-field eigenstates (energies in cm^-1) the property libraries work on.
PropertyStates scriptPropertyStates(const ParameterSet& set, bool complex, const std::filesystem::path& tableDirectory);

}  // namespace orvane
