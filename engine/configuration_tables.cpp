#include "engine/configuration_tables.hpp"

#include "core/atomic_file.hpp"
#include "core/user_error.hpp"
#include "engine/pair_record_table.hpp"
#include "tables/table_seal.hpp"
#include "tables/reduced_tables.hpp"
#include "tables/state_labels.hpp"
#include "tables/table_directory.hpp"
#include "tables/term_generator.hpp"

namespace orvane {

namespace {

constexpr const char* kTableErrorTitle = "Error in real CF main program";

// Spin-spin file, then spin-other-orbit + correlated spin-orbit file.
const std::array<std::string, 2> kOperatorFileNames = {"mess.val", "mesooci.val"};
const std::array<std::string, 2> kZFormFileNames = {"rmziss.val", "rmzic.val"};

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

// A table is usable when it exists and its seal holds (tables/table_seal.hpp).
bool tableIsUsable(const std::filesystem::path& directory, const std::string& name) {
    return !tableFileProblem(directory, name);
}

bool manyBodyTablesUsable(int n, const std::filesystem::path& directory) {
    for (const auto* form : {&kOperatorFileNames, &kZFormFileNames})
        for (const auto& name : *form)
            if (!tableIsUsable(directory, configurationFileName(n, name))) return false;
    return true;
}

// The directory holding the three-body and magnetic tables of f^n: `source`
// (where the other tables are) or the per-user cache; generated first when
// missing (they need the escalation from f^2, f^3, so all of f^0..f^7 is built).
std::filesystem::path ensureManyBodyTables(int n, const std::filesystem::path& source, LogBook& log) {
    if (manyBodyTablesUsable(n, source)) return source;
    const auto cache = userCacheTableDirectory();
    if (source != cache && manyBodyTablesUsable(n, cache)) return cache;
    const auto target = directoryIsWritable(source) ? source : cache;
    if (!directoryIsWritable(target))
        throw UserError(kTableErrorTitle, "the three-body and magnetic tables of f" + std::to_string(n) +
                                              " are missing and neither " + source.string() + " nor " +
                                              cache.string() + " can be written");
    log.appendLine("Generating the three-body and magnetic tables of f" + std::to_string(n) + " in " +
                   target.string());
    writeManyBodyTables({n}, lowerConfigurationTables(generateConfigurations(7)), target, log);
    return target;
}

template <std::size_t Count>
std::array<Eigen::MatrixXd, Count> readPairTable(const std::filesystem::path& directory, int n,
                                                 const std::string& table,
                                                 const std::vector<TermSpinOrbit>& spinOrbit,
                                                 bool storedHalf) {
    const auto path = tablePath(directory, n, table);
    const auto read = parsePairRecords(readTextFile(path), static_cast<int>(spinOrbit.size()),
                                       static_cast<int>(Count), path.string());
    std::array<Eigen::MatrixXd, Count> matrices;
    for (std::size_t c = 0; c < Count; ++c)
        matrices[c] = storedHalf ? completeFromStoredHalf(read[c], spinOrbit) : read[c];
    return matrices;
}

}  // namespace

std::vector<std::string> manyBodyTableNames(MagneticTableFiles magneticFiles) {
    const auto& names = magneticFiles == MagneticTableFiles::ZForm ? kZFormFileNames : kOperatorFileNames;
    return {"rmtic.val", names[0], names[1]};
}

EngineTables loadEngineTables(int n, const std::filesystem::path& directory, LogBook& log,
                              MagneticTableFiles magneticFiles) {
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
    // Then the three-body table (every ordered pair stored) and the magnetic tables (i <= j stored).
    const auto manyBody = ensureManyBodyTables(n, source, log);
    const auto names = manyBodyTableNames(magneticFiles);
    tables.threeBody = readPairTable<6>(manyBody, n, names[0], spinOrbit, false);
    tables.spinSpin = readPairTable<3>(manyBody, n, names[1], spinOrbit, true);
    tables.spinOtherOrbit = readPairTable<6>(manyBody, n, names[2], spinOrbit, true);
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
    const auto termCount = static_cast<Eigen::Index>(built.terms.size());
    const Eigen::MatrixXd zero = Eigen::MatrixXd::Zero(termCount, termCount);
    tables.threeBody.fill(zero);
    tables.spinSpin.fill(zero);
    tables.spinOtherOrbit.fill(zero);
    return tables;
}

EngineTables engineTablesFrom(const ConfigurationTables& built, const ThreeBodyOperators& threeBody,
                              const MagneticOperators& magnetic) {
    EngineTables tables = engineTablesFrom(built);
    tables.threeBody = threeBody;
    tables.spinSpin = magnetic.spinSpin;
    tables.spinOtherOrbit = magnetic.spinOtherOrbit;
    return tables;
}

}  // namespace orvane
