#pragma once
// Energy levels of a parameter set: the library entry point of the engine.
//
// Reads the tables of the configuration (the conjugate f^(14-n) for n = 8..13
// unless the set's switches hold "/actualshell"), builds the free-ion
// components, solves the free ion and, when asked, the real crystal field by
// blocks of MJ residue modulo the set's fold.
//
// Conjugate route (docs/engine.md, "Conjugate configurations"): zeta, T2', T3..T8 and every
// B(k,q) change sign; F^k, alpha, beta, gamma, M^k, P^k keep theirs; the
// legacy T2 follows Judd's rule (free_ion.hpp). Every
// scalar free-ion operator is barycentred, so EAVG is the configuration
// barycentre and both routes give the same levels.
//
// Units: every parameter in the set's energy unit; levels in the same unit.
// Operators whose tables are not read yet are listed in
// `parametersNotIncluded` when non-zero and logged (every free-ion parameter
// now has its operator).
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "core/log_book.hpp"
#include "engine/configuration_tables.hpp"
#include "engine/crystal_field.hpp"
#include "engine/crystal_field_parameters.hpp"
#include "engine/free_ion.hpp"
#include "engine/free_ion_weights.hpp"
#include "engine/model.hpp"
#include "engine/parameter_set.hpp"

namespace orvane {

struct EnergyLevelOptions {
    bool crystalField = true;
    bool wantVectors = false;
    bool complex = false;  // Hermitian blocks with Im B(k,q) (zheevr) instead of real ones
    int lowest = kAllEigenvalues;  // only the lowest m crystal-field levels (index range per block)
};

struct EnergyLevelResult {
    int electrons = 0;          // of the parameter set
    int tableElectrons = 0;     // of the tables used (14 - n on the conjugate route)
    bool conjugate = false;
    FreeIonWeights freeIonWeights;  // as applied (signs of the route included)
    FreeIonOperators freeIonOperators;
    FreeIonSolution freeIon;
    std::vector<CrystalFieldKey> crystalFieldKeys;
    std::vector<double> crystalFieldValues;      // Re B(k,q) as applied, one per key
    std::vector<double> crystalFieldImaginary;   // Im B(k,q) as applied (all 0 for the real engine)
    TransformedTensors crystalFieldTensors;  // U(k) and correlation tensors between free-ion levels
    // The |a J MJ> blocks of the free-ion levels (components not built: see levelBasisOperators).
    CrystalFieldOperators crystalFieldOperators;
    // Levels (energy and block) of the crystal field.
    CrystalFieldSolution crystalField;       // empty when the crystal field was not asked
    // The prepared model of the run and its crystal-field levels with the
    // vectors over the model's |SL J MJ> blocks (when vectors were asked).
    std::shared_ptr<const Model> model;
    std::vector<ModelLevel> modelLevels;
    std::vector<std::string> parametersNotIncluded;
};

// Throws UserError ("Error in real CF main program") for an impossible set,
// missing tables or a failed diagonalisation.
EnergyLevelResult computeEnergyLevels(const ParameterSet& set, const std::filesystem::path& tableDirectory,
                                      LogBook& log, const EnergyLevelOptions& options = {});

// The crystal-field components between free-ion levels, block by block as in
// `result.crystalFieldOperators` (for reports and checks; the engine itself
// works on |SL J MJ>, engine/model.hpp).
CrystalFieldOperators levelBasisOperators(const EnergyLevelResult& result, bool withImaginaryParts);

}  // namespace orvane
