#include "tables/table_seal.hpp"
#include "tables/three_body_tables.hpp"

#include <cmath>

#include "core/atomic_file.hpp"
#include "core/number_format.hpp"
#include "tables/shell_recursion.hpp"
#include "tables/table_directory.hpp"
#include "tables/two_body_escalation.hpp"

namespace orvane {

namespace {

constexpr double kZeroThreshold = 1e-11;

std::string valueText(double value) { return generalNumber(std::abs(value) < kZeroThreshold ? 0.0 : value); }

}  // namespace

std::vector<ThreeBodyOperators> threeBodyOperatorsOfAll(const std::vector<ConfigurationTables>& tables) {
    return operatorsOfEveryShell<ThreeBodyOperators>(tables, 3, zeroThreeBodyOperators,
                                                     threeBodyOperatorsOfF3, escalateThreeBodyOperators,
                                                     conjugateThreeBodyOperators);
}

Eigen::MatrixXd racahE3(const ConfigurationTables& tables) {
    return racahElectrostaticOperators(tables.electrons, tables.coulomb[0], tables.coulomb[1], tables.coulomb[2])[2];
}

ThreeBodyOperators ordinaryThreeBodyOperators(int n, const ThreeBodyOperators& orthogonal,
                                              const Eigen::MatrixXd& e3) {
    ThreeBodyOperators result = orthogonal;
    if (n >= 3 && n <= kFullShell - 2) result[0] = legacyT2(n, orthogonal[0], e3);
    return result;
}

std::string threeBodyFileText(int n, const ThreeBodyOperators& operators, bool tic) {
    std::string text = std::string("Reduced matrix elements of three-particle operators ") + (tic ? "(tic) " : "") +
                       "for f" + std::to_string(n) + " shell  [" + kTableGeneratorVersion + "]\n";
    const int T = static_cast<int>(operators[0].rows());
    for (int i = 0; i < T; ++i)
        for (int j = 0; j < T; ++j) {
            double size = 0.0;
            for (const auto& m : operators) size += std::abs(m(i, j));
            if (size < kZeroThreshold) continue;
            text += std::to_string(i + 1) + " " + std::to_string(j + 1) + "  ";
            for (const auto& m : operators) text += "  " + valueText(m(i, j));
            text += "\n";
        }
    return text;
}

Eigen::MatrixXd threeBodyTraceMatrix(const std::vector<TermSpinOrbit>& terms, const ThreeBodyOperators& operators) {
    Eigen::MatrixXd traces(kThreeBodyOperatorCount, kThreeBodyOperatorCount);
    for (int a = 0; a < kThreeBodyOperatorCount; ++a)
        for (int b = 0; b < kThreeBodyOperatorCount; ++b)
            traces(a, b) = scalarProductTrace(terms, operators[static_cast<std::size_t>(a)],
                                              operators[static_cast<std::size_t>(b)]);
    return traces;
}

std::vector<std::filesystem::path> writeThreeBodyTables(int n, const ThreeBodyOperators& orthogonal,
                                                        const Eigen::MatrixXd& e3,
                                                        const std::filesystem::path& directory, LogBook& log) {
    const std::string shell = std::to_string(n);
    const auto meti = directory / configurationFileName(n, "meti.val");
    log.appendLine("Starting building reduced matrix elements of the 3-particle operators (ordinary) for f" + shell);
    writeGeneratedTable(meti, threeBodyFileText(n, ordinaryThreeBodyOperators(n, orthogonal, e3), false));
    log.appendLine("Finished building reduced matrix elements of the 3-particle operators  ti (ordinary)  for f" + shell);
    const auto tic = directory / configurationFileName(n, "rmtic.val");
    log.appendLine("Starting building reduced matrix elements of the3-particle operators (tic) for f" + shell);
    writeGeneratedTable(tic, threeBodyFileText(n, orthogonal, true));
    log.appendLine("Finished building reduced matrix elements of the 3-particle operators (tic)  for f" + shell);
    return {meti, tic};
}

}  // namespace orvane
