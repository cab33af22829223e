#include "engine/configuration_tables.hpp"

#include "core/atomic_file.hpp"
#include "core/user_error.hpp"
#include "tables/reduced_tables.hpp"
#include "tables/state_labels.hpp"
#include "tables/table_directory.hpp"

namespace orvane {

namespace {

constexpr const char* kTableErrorTitle = "Error in real CF main program";

std::vector<EngineTerm> engineTermsOf(const std::vector<TermRecord>& records) {
    std::vector<EngineTerm> terms;
    terms.reserve(records.size());
    for (const auto& record : records)
        terms.push_back({record.label, twiceSpinOf(record), orbitalOf(record), record.r7Value,
                         record.g2Value});
    return terms;
}

std::filesystem::path tablePath(const std::filesystem::path& directory, int n, const std::string& table) {
    const std::string name = configurationFileName(n, table);
    const auto found = findCaseBlind(directory, name);
    if (!found)
        throw UserError(kTableErrorTitle, "table " + name + " not found in " + directory.string());
    return *found;
}

Eigen::MatrixXd readFullTable(const std::filesystem::path& directory, int n, TableOperator op, int rank,
                              const std::vector<TermSpinOrbit>& spinOrbit) {
    const auto path = tablePath(directory, n, tableFileName(op, rank));
    const auto stored =
        parseReducedTable(readTextFile(path), static_cast<int>(spinOrbit.size()), path.string());
    return completeFromStoredHalf(stored, spinOrbit);
}

}  // namespace

EngineTables loadEngineTables(int n, const std::filesystem::path& directory, LogBook& log) {
    const auto source = ensureConfigurationTables(n, directory, log);
    const auto labelPath = tablePath(source, n, "state.lab");
    const auto parsed = parseStateLabels(readTextFile(labelPath), StateLabelForm::Standard, true,
                                         labelPath.string());
    if (parsed.terms.empty())
        throw UserError(kTableErrorTitle, "ZERO State LABELS!!! in " + labelPath.string());

    EngineTables tables;
    tables.electrons = n;
    tables.terms = engineTermsOf(parsed.terms);
    const auto spinOrbit = spinOrbitOf(parsed.terms);
    // Read in the engine's order: U(6), U(4), U(2), V(11), then f(2), f(4), f(6).
    for (int i = 2; i >= 0; --i)
        tables.unitTensor[i] = readFullTable(source, n, TableOperator::U, kEvenRanks[i], spinOrbit);
    tables.spinOrbitTensor = readFullTable(source, n, TableOperator::V1, 1, spinOrbit);
    for (int i = 0; i < 3; ++i)
        tables.coulomb[i] = readFullTable(source, n, TableOperator::F, kEvenRanks[i], spinOrbit);
    return tables;
}

EngineTables engineTablesFrom(const ConfigurationTables& built) {
    EngineTables tables;
    tables.electrons = built.electrons;
    tables.terms = engineTermsOf(built.terms);
    for (int i = 0; i < 3; ++i) {
        tables.unitTensor[i] = built.unitTensor[kEvenRanks[i]];
        tables.coulomb[i] = built.coulomb[i];
    }
    tables.spinOrbitTensor = built.doubleTensor[1];
    return tables;
}

}  // namespace orvane
