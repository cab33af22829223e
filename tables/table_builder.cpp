#include "tables/table_seal.hpp"
#include "tables/table_builder.hpp"

#include <fmt/format.h>

#include "core/atomic_file.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"
#include "tables/fractional_parentage.hpp"
#include "tables/reduced_tables.hpp"
#include "tables/table_directory.hpp"

namespace orvane {

namespace {

constexpr std::array<int, 3> kUnitRanks{2, 4, 6};
constexpr std::array<int, 4> kDoubleRanks{1, 2, 4, 6};

}  // namespace

std::vector<TermLabelLine> termLinesOf(const GeneratedConfiguration& configuration) {
    std::vector<TermLabelLine> lines;
    for (const auto& t : configuration.terms)
        lines.push_back({t.label, t.seniority, r7LabelText(t.w), g2LabelText(t.u)});
    return lines;
}

std::vector<TermRecord> termRecordsOf(const std::vector<TermLabelLine>& lines) {
    std::vector<TermRecord> records;
    for (const auto& line : lines)
        records.push_back({line.label, line.seniority, CasimirR7Value(line.wText), CasimirG2Value(line.uText)});
    return records;
}

std::string stateLabelTitle(int n) {
    return fmt::format("f{} SL terms: label v W(R7) U(G2)  [{}]", n, kTableGeneratorVersion);
}

std::string parentageTitle(int n) {
    return fmt::format("CFP f{} from f{}: term parent value  [{}]", n, n - 1, kTableGeneratorVersion);
}

std::string reducedTableTitle(const std::string& operatorText, int n) {
    return fmt::format("{} MATRIX  f{}  [{}]", operatorText, n, kTableGeneratorVersion);
}

ConfigurationTables computeConfigurationTables(int n, const std::vector<GeneratedConfiguration>& generated) {
    if (n < 1 || n > 14) throw std::invalid_argument("configurations are f1 to f14");
    ConfigurationTables tables;
    tables.electrons = n;
    if (n <= 7) {
        tables.termLines = termLinesOf(generated.at(static_cast<std::size_t>(n)));
        tables.terms = termRecordsOf(tables.termLines);
        tables.parents = termRecordsOf(termLinesOf(generated.at(static_cast<std::size_t>(n - 1))));
        tables.cfp = generated[static_cast<std::size_t>(n)].cfp;
    } else {
        const int nPrime = 15 - n;
        const auto& source = generated.at(static_cast<std::size_t>(nPrime));
        tables.termLines = termLinesOf(generated.at(static_cast<std::size_t>(14 - n)));
        tables.terms = termRecordsOf(tables.termLines);
        tables.parents = termRecordsOf(termLinesOf(source));
        ParentageTable sourceTable;
        sourceTable.values = source.cfp;
        tables.cfp = complementaryParentage(n, sourceTable, tables.parents, tables.terms,
                                            tables.terms, tables.parents);
    }
    const auto terms = spinOrbitOf(tables.terms);
    const auto parents = spinOrbitOf(tables.parents);
    for (int k = 0; k <= 6; ++k) {
        tables.unitTensor[static_cast<std::size_t>(k)] = unitTensorMatrix(n, k, terms, parents, tables.cfp);
        tables.doubleTensor[static_cast<std::size_t>(k)] = doubleTensorMatrix(n, k, terms, parents, tables.cfp);
    }
    for (std::size_t r = 0; r < kUnitRanks.size(); ++r)
        tables.coulomb[r] = coulombMatrix(n, kUnitRanks[r], terms,
                                          tables.unitTensor[static_cast<std::size_t>(kUnitRanks[r])]);
    return tables;
}

std::vector<std::string> configurationTableNames(int n) {
    std::vector<std::string> names{configurationFileName(n, "state.lab"), configurationFileName(n, "cfp.val")};
    for (int k : kUnitRanks) names.push_back(configurationFileName(n, tableFileName(TableOperator::U, k)));
    for (int k : kDoubleRanks) names.push_back(configurationFileName(n, tableFileName(TableOperator::V1, k)));
    for (int k : kUnitRanks) names.push_back(configurationFileName(n, tableFileName(TableOperator::F, k)));
    return names;
}

namespace {

// A table is usable when it exists and its seal holds (tables_seal.hpp;
// tables from elsewhere, without the generator's bracket, are accepted).
bool tableIsCurrent(const std::filesystem::path& directory, const std::string& name) {
    return !tableFileProblem(directory, name);
}

// The tables of f^n that cannot be used, each with what is wrong; a missing
// table is logged only when `logMissing`.
bool allTablesCurrent(int n, const std::filesystem::path& directory, LogBook* log = nullptr) {
    bool current = true;
    for (const auto& name : configurationTableNames(n))
        if (const auto problem = tableFileProblem(directory, name)) {
            current = false;
            if (log && *problem != "is missing")
                log->appendLine("The table " + (directory / name).string() + " " + *problem + "; it is generated again");
        }
    return current;
}

}  // namespace

std::vector<std::filesystem::path> writeConfigurationTables(const ConfigurationTables& tables,
                                                            const std::filesystem::path& directory,
                                                            LogBook& log, bool onlyMissing) {
    const int n = tables.electrons;
    std::filesystem::create_directories(directory);
    std::vector<std::filesystem::path> written;
    auto write = [&](const std::string& name, const std::string& text) {
        if (onlyMissing && tableIsCurrent(directory, name)) return;
        // Replace whatever spelling of the name is already there.
        const auto existing = findCaseBlind(directory, name);
        const auto path = existing ? *existing : directory / name;
        writeGeneratedTable(path, text);
        log.appendLine("Written " + path.string());
        written.push_back(path);
    };
    write(configurationFileName(n, "state.lab"), stateLabelFileText(stateLabelTitle(n), tables.termLines));
    write(configurationFileName(n, "cfp.val"), fractionalParentageFileText(parentageTitle(n), tables.cfp));
    for (int k : kUnitRanks)
        write(configurationFileName(n, tableFileName(TableOperator::U, k)),
              reducedTableFileText(reducedTableTitle(operatorName(TableOperator::U, k), n),
                                   tables.unitTensor[static_cast<std::size_t>(k)]));
    for (int k : kDoubleRanks)
        write(configurationFileName(n, tableFileName(TableOperator::V1, k)),
              reducedTableFileText(reducedTableTitle(operatorName(TableOperator::V1, k), n),
                                   tables.doubleTensor[static_cast<std::size_t>(k)]));
    for (std::size_t r = 0; r < kUnitRanks.size(); ++r)
        write(configurationFileName(n, tableFileName(TableOperator::F, kUnitRanks[r])),
              reducedTableFileText(reducedTableTitle(operatorName(TableOperator::F, kUnitRanks[r]), n),
                                   tables.coulomb[r]));
    return written;
}

std::vector<std::filesystem::path> writeDeliveredTables(
    const std::vector<GeneratedConfiguration>& generated, const std::filesystem::path& directory,
    LogBook& log) {
    std::filesystem::create_directories(directory);
    std::vector<std::filesystem::path> written;
    for (int n = 1; n <= 7; ++n) {
        const auto& c = generated.at(static_cast<std::size_t>(n));
        const auto labels = directory / configurationFileName(n, "state.lab");
        writeGeneratedTable(labels, stateLabelFileText(stateLabelTitle(n), termLinesOf(c)));
        const auto cfp = directory / configurationFileName(n, "cfp.val");
        writeGeneratedTable(cfp, fractionalParentageFileText(parentageTitle(n), c.cfp));
        log.appendLine("Written " + labels.string());
        log.appendLine("Written " + cfp.string());
        log.progress(LogCategory::Tables, "delivered tables", n, 7);
        written.push_back(labels);
        written.push_back(cfp);
    }
    return written;
}

std::filesystem::path ensureConfigurationTables(int n, const std::filesystem::path& directory,
                                                LogBook& log) {
    if (n < 1 || n > 14)
        throw UserError("Error in building tables", fmt::format("no configuration f{} (1 to 14)", n));
    if (allTablesCurrent(n, directory, &log)) return directory;
    const auto cache = userCacheTableDirectory();
    std::filesystem::path target = directory;
    if (!directoryIsWritable(directory)) {
        if (allTablesCurrent(n, cache, &log)) return cache;
        target = cache;
        if (!directoryIsWritable(target)) {
            std::string problems;
            for (const auto& name : configurationTableNames(n))
                if (const auto problem = tableFileProblem(directory, name))
                    problems += "; " + (directory / name).string() + " " + *problem;
            throw UserError("Error in building tables",
                            "neither the table directory " + directory.string() + " nor the cache " +
                                cache.string() + " can be written" + problems);
        }
    }
    log.appendLine(fmt::format("Generating the tables of f{} in {}", n, target.string()));
    const auto generated = generateConfigurations(7);
    writeConfigurationTables(computeConfigurationTables(n, generated), target, log, true);
    return target;
}

}  // namespace orvane

namespace orvane {

namespace {

std::vector<TermRecord> storedTerms(int n, const std::filesystem::path& directory, LogBook& log) {
    if (n == 0) return {{"1S", 0, 0, 0}};
    const std::string name = configurationFileName(n, "state.lab");
    const auto found = findCaseBlind(directory, name);
    auto parsed = readStateLabelFile(found ? *found : directory / name, StateLabelForm::Standard);
    if (parsed.terms.empty()) log.appendLine("ZERO State LABELS!!!");
    return std::move(parsed.terms);
}

Eigen::MatrixXd storedTable(const std::filesystem::path& directory, const std::string& name, int termCount) {
    const auto found = findCaseBlind(directory, name);
    if (!found) throw UserError("Error in building tables", name + " not found in " + directory.string());
    return parseReducedTable(readTextFile(*found), termCount, found->string());
}

}  // namespace

StoredParentage readStoredParentage(int n, const std::filesystem::path& directory, LogBook& log) {
    const auto terms = storedTerms(n, directory, log);
    const auto parents = storedTerms(n - 1, directory, log);
    const std::string cfpName = configurationFileName(n, "cfp.val");
    const auto cfpFile = findCaseBlind(directory, cfpName);
    const auto cfp = readFractionalParentageFile(n, cfpFile ? *cfpFile : directory / cfpName);
    Eigen::MatrixXd values = Eigen::MatrixXd::Zero(static_cast<int>(terms.size()), static_cast<int>(parents.size()));
    const int rows = std::min<int>(static_cast<int>(cfp.values.rows()), static_cast<int>(values.rows()));
    const int cols = std::min<int>(static_cast<int>(cfp.values.cols()), static_cast<int>(values.cols()));
    values.topLeftCorner(rows, cols) = cfp.values.topLeftCorner(rows, cols);
    return {spinOrbitOf(terms), spinOrbitOf(parents), std::move(values)};
}

std::filesystem::path BuildUnitTensorTable(int n, bool doubleTensor, int k, const std::filesystem::path& directory,
                                           LogBook& log) {
    const auto stored = readStoredParentage(n, directory, log);
    log.appendLine("Build Uk or V1k RME");
    const auto kind = doubleTensor ? TableOperator::V1 : TableOperator::U;
    const Eigen::MatrixXd table = doubleTensor ? doubleTensorMatrix(n, k, stored.terms, stored.parents, stored.cfp)
                                               : unitTensorMatrix(n, k, stored.terms, stored.parents, stored.cfp);
    const auto path = directory / configurationFileName(n, tableFileName(kind, k));
    writeGeneratedTable(path, reducedTableFileText(reducedTableTitle(operatorName(kind, k), n), table));
    log.appendLine(" (only for the lower triangle of the matrix).");
    return path;
}

std::filesystem::path BuildCoulombTable(int n, int k, const std::filesystem::path& directory, LogBook& log) {
    const auto terms = storedTerms(n, directory, log);
    const auto termSL = spinOrbitOf(terms);
    const int T = static_cast<int>(terms.size());
    auto coulombOf = [&](int rank) {
        const auto stored = storedTable(directory, configurationFileName(n, tableFileName(TableOperator::U, rank)), T);
        return coulombMatrix(n, rank, termSL, completeFromStoredHalf(stored, termSL));
    };
    log.appendLine(fmt::format("Construct the Coulomb reduced matrix f({})", k));
    const Eigen::MatrixXd table = coulombOf(k);
    const auto path = directory / configurationFileName(n, tableFileName(TableOperator::F, k));
    writeGeneratedTable(path, reducedTableFileText(reducedTableTitle(operatorName(TableOperator::F, k), n), table));
    log.appendLine(" (only for the lower triangle of the matrix).");
    bool allRanks = true;
    for (int rank : kUnitRanks)
        allRanks = allRanks && findCaseBlind(directory, configurationFileName(n, tableFileName(TableOperator::U, rank)));
    if (allRanks)
        for (const auto& line : electrostaticTraceLines(electrostaticTraces(n, termSL, coulombOf(2), coulombOf(4), coulombOf(6))))
            log.appendLine(line);
    return path;
}

}  // namespace orvane
