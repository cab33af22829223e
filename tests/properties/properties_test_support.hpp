#pragma once
// Eigenstates of a parameter set for the property tests, from the generated
// table directory of the engine tests (the model's configuration: f^n, or
// f^(14-n) on the conjugate route).
#include <filesystem>

#include "core/log_book.hpp"
#include "engine/model.hpp"
#include "engine/parameter_file.hpp"
#include "properties/property_states.hpp"
#include "tests/engine/engine_test_support.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane::test {

inline PropertyStates solvedStates(const Model& model, const ParameterSet& set, bool complex) {
    ModelWorkspace workspace;
    const auto solution = model.solve(parameterVectorOf(set, complex), {!model.setup().crystalField, true, kAllEigenvalues, {}, {}}, workspace);
    return model.setup().crystalField ? crystalFieldStates(model, solution, 1.0)
                                      : freeIonStates(model, solution.freeIon, 1.0);
}

// States of a set from the tables of the engine tests.
inline PropertyStates statesOf(const ParameterSet& set, bool crystalField, bool complex = false) {
    const auto setup = modelSetupOf(set, crystalField, complex);
    const bool conjugate = set.electronCount > 7 && !set.switches.actualShell;
    const auto model =
        Model::fromTables(setup, engineTables(conjugate ? 14 - set.electronCount : set.electronCount));
    return solvedStates(model, set, complex);
}

// States of an example parameter file with every operator (tables generated on first use).
inline PropertyStates exampleStates(const std::string& file, bool crystalField) {
    const auto set = readParameterFile(sourceDirectory() / "examples" / file);
    MemoryLogBook log;
    const auto model = Model::build(modelSetupOf(set, crystalField, false), engineTableDirectory(), log);
    return solvedStates(model, set, false);
}

}  // namespace orvane::test
