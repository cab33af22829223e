#include "interactive/superposition_runs.hpp"

#include "engine/crystal_field_table.hpp"
#include "interactive/superposition_dialogs.hpp"
#include "params/cf_conventions.hpp"

namespace orvane::params {

std::optional<SuperpositionResult> superpositionBkqAsking(const std::vector<Ligand>& ligands,
                                                          const SuperpositionParameters& parameters, Asker& asker) {
    auto confirmed = confirmReferenceDistance(parameters, asker);
    if (!confirmed) return std::nullopt;
    return SuperpositionResult{*confirmed, superpositionTable(superpositionBkq(ligands, *confirmed))};
}

std::optional<int> adoptSuperpositionBkq(ParameterSet& set, const CfTable& table) {
    set.cfConvention = CfConvention::Wybourne;
    return storeCrystalFieldTable(set, table);
}

SuperpositionEstimate estimateFromParameterSet(const std::vector<Ligand>& ligands,
                                               const SuperpositionParameters& fixedExponents,
                                               const ParameterSet& set) {
    CfTable table = crystalFieldTableOf(set);
    if (const auto conversion = conversionToWybourne(normalisationOf(set.cfConvention)))
        convertTable(table, *conversion);
    return estimateIntrinsicParameters(ligands, fixedExponents, table);
}

}  // namespace orvane::params
