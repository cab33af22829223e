#include "engine/correlation_crystal_field.hpp"

#include <cmath>
#include <optional>
#include <string>

#include <fmt/format.h>

#include "core/atomic_file.hpp"
#include "core/user_error.hpp"
#include "engine/engine_errors.hpp"
#include "tables/lccf_table.hpp"
#include "tables/occf_table.hpp"
#include "tables/table_seal.hpp"
#include "tables/reduced_tables.hpp"
#include "tables/state_labels.hpp"
#include "tables/table_builder.hpp"
#include "tables/table_directory.hpp"

namespace orvane {

namespace {

std::vector<TermSpinOrbit> spinOrbitOfTerms(const std::vector<EngineTerm>& terms) {
    std::vector<TermSpinOrbit> result;
    for (const auto& term : terms) result.push_back({term.twiceS, term.L});
    return result;
}

Eigen::MatrixXd readTermTable(const std::filesystem::path& path, const std::vector<EngineTerm>& terms) {
    const auto spinOrbit = spinOrbitOfTerms(terms);
    const auto stored = parseReducedTable(readTextFile(path), static_cast<int>(terms.size()), path.string());
    return completeFromStoredHalf(stored, spinOrbit);
}

std::optional<std::filesystem::path> tableIn(const std::filesystem::path& directory, int n, const std::string& table) {
    return findCaseBlind(directory, configurationFileName(n, table));
}

// The actual f^n must list the terms of the configuration worked in (the
// conjugate route identifies f^n and f^(14-n) states by label).
void requireSameTerms(const std::filesystem::path& directory, int n, const EngineTables& tables) {
    if (n == tables.electrons) return;
    const auto path = tableIn(directory, n, "state.lab");
    if (!path) throw UserError(kCfHamiltonianError, configurationFileName(n, "state.lab") + " not found in " +
                                                        directory.string());
    const auto parsed = parseStateLabels(readTextFile(*path), StateLabelForm::Standard, true, path->string());
    bool same = parsed.terms.size() == tables.terms.size();
    for (std::size_t i = 0; same && i < parsed.terms.size(); ++i) same = parsed.terms[i].label == tables.terms[i].label;
    if (!same)
        throw UserError(kCfHamiltonianError, fmt::format("the terms of {} and of the conjugate configuration f{} differ",
                                                         path->string(), tables.electrons));
}

Eigen::MatrixXd spinCorrelatedTable(const EngineTables& tables, int k, const std::filesystem::path& directory,
                                    LogBook& log) {
    const auto source = ensureConfigurationTables(tables.electrons, directory, log);
    const std::string name = tableFileName(TableOperator::V1, k);
    const auto path = tableIn(source, tables.electrons, name);
    if (!path)
        throw UserError(kCfHamiltonianError,
                        configurationFileName(tables.electrons, name) + " not found in " + source.string());
    return spinCorrelatedTermTensor(tables.terms, readTermTable(*path, tables.terms));
}

Eigen::MatrixXd lCorrelatedTable(const EngineTables& tables, int n, int k, const std::filesystem::path& directory,
                                 LogBook& log) {
    const auto source = ensureConfigurationTables(n, directory, log);
    requireSameTerms(source, n, tables);
    const auto path = freshGeneratedTable(
        source, configurationFileName(n, tableFileName(TableOperator::Lccf, k)),
        [&] {  // built from the parentage of f^n, which names the terms of f^(n-1)
            if (n > 1) ensureConfigurationTables(n - 1, source, log);
            return BuildLccfTable(n, k, source, log);
        },
        log);
    return readTermTable(path, tables.terms);
}

Eigen::MatrixXd orthogonalCorrelationTable(const EngineTables& tables, int n, int k, char variant,
                                           const std::filesystem::path& directory, LogBook& log) {
    const auto source = ensureConfigurationTables(n, directory, log);
    requireSameTerms(source, n, tables);
    const auto path = freshGeneratedTable(
        source, configurationFileName(n, occfTableName(k, variant)),
        [&] {  // escalated from f^2 through the parentage of every f^m, m <= n
            for (int m = 1; m < n; ++m) ensureConfigurationTables(m, source, log);
            return BuildOccfTable(n, k, variant, source, log);
        },
        log);
    return readTermTable(path, tables.terms);
}

}  // namespace

// 2 (S . V(1k)): Edmonds (7.1.1) on the spin part with <S||S||S> = sqrt(S(S+1)(2S+1)),
// divided by sqrt(2S+1) for the spin-diagonal (orbital) reduced element.
Eigen::MatrixXd spinCorrelatedTermTensor(const std::vector<EngineTerm>& terms, const Eigen::MatrixXd& doubleTensor) {
    const auto T = static_cast<Eigen::Index>(terms.size());
    Eigen::MatrixXd result = Eigen::MatrixXd::Zero(T, T);
    for (Eigen::Index i = 0; i < T; ++i)
        for (Eigen::Index j = 0; j < T; ++j) {
            const int twiceS = terms[static_cast<std::size_t>(i)].twiceS;
            if (twiceS != terms[static_cast<std::size_t>(j)].twiceS) continue;
            const double S = 0.5 * twiceS;
            result(i, j) = 2.0 * std::sqrt(S * (S + 1.0) / (2.0 * S + 1.0)) * doubleTensor(i, j);
        }
    return result;
}

CorrelationTermTensors loadCorrelationTermTensors(const std::vector<CrystalFieldKey>& keys, const EngineTables& tables,
                                                  int electrons, const std::filesystem::path& directory, LogBook& log) {
    CorrelationTermTensors tensors;
    for (const auto& key : keys) {
        if (key.op == CrystalFieldOperator::Standard) continue;
        auto& set = tensors[key.op];
        const int kIndex = key.k / 2 - 1;
        if (set[kIndex].size() > 0) continue;
        switch (key.op) {
            case CrystalFieldOperator::Sccf: set[kIndex] = spinCorrelatedTable(tables, key.k, directory, log); break;
            case CrystalFieldOperator::Lccf: set[kIndex] = lCorrelatedTable(tables, electrons, key.k, directory, log); break;
            case CrystalFieldOperator::OccfA:
                set[kIndex] = orthogonalCorrelationTable(tables, electrons, key.k, 'A', directory, log);
                break;
            case CrystalFieldOperator::OccfB:
                set[kIndex] = orthogonalCorrelationTable(tables, electrons, key.k, 'B', directory, log);
                break;
            case CrystalFieldOperator::Standard: break;
        }
    }
    return tensors;
}

}  // namespace orvane
