#pragma once
// The superposition-model operations shared by the command line's `orvane sm`
// and the desktop's superposition-model editor: the Bkq of a ligand table
// after the check of the reference distance, their transfer into the
// crystal-field rows of a parameter set, and the estimate of the intrinsic
// parameters from the crystal-field rows of a set.
#include <optional>
#include <vector>

#include "engine/parameter_set.hpp"
#include "interactive/asker.hpp"
#include "params/cf_records.hpp"
#include "params/superposition.hpp"
#include "params/superposition_estimation.hpp"

namespace orvane::params {

struct SuperpositionResult {
    SuperpositionParameters parameters;  // as used (R0 after the Abort/Retry/Ignore question)
    CfTable table;                       // rows k = 2, 4, 6, q = 0..k (Wybourne unless Stevens-type)
};

// confirmReferenceDistance, then the sums; std::nullopt when R0 = 0 was not
// ignored. Throws UserError for invalid input (checkSuperpositionInput).
std::optional<SuperpositionResult> superpositionBkqAsking(const std::vector<Ligand>& ligands,
                                                          const SuperpositionParameters& parameters, Asker& asker);

// Replaces the set's crystal-field rows by the table's, in Wybourne's
// convention. Returns the fold the set had when storing had to change it.
std::optional<int> adoptSuperpositionBkq(ParameterSet& set, const CfTable& table);

// The set's crystal-field rows turned to Wybourne's normalisation, then
// estimateIntrinsicParameters (its UserErrors titled "Error in SM estimation").
SuperpositionEstimate estimateFromParameterSet(const std::vector<Ligand>& ligands,
                                               const SuperpositionParameters& fixedExponents,
                                               const ParameterSet& set);

}  // namespace orvane::params
