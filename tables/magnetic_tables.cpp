#include "tables/table_seal.hpp"
#include "tables/magnetic_tables.hpp"

#include <cmath>

#include <fmt/format.h>

#include "core/atomic_file.hpp"
#include "core/number_format.hpp"
#include "tables/shell_recursion.hpp"
#include "tables/table_directory.hpp"
#include "tables/two_body_escalation.hpp"

namespace orvane {

namespace {

constexpr double kZeroThreshold = 1e-11;

std::string valueText(double value) { return generalNumber(std::abs(value) < kZeroThreshold ? 0.0 : value); }

// Product traces as lines of "#0.000000" (or `picture`) values under a heading.
std::string traceListing(const std::string& heading, const std::vector<std::string>& names,
                         const Eigen::MatrixXd& traces, const char* picture) {
    std::string text = heading + "\n";
    for (int a = 0; a < traces.rows(); ++a) {
        text += fmt::format("{:<8}", names[static_cast<std::size_t>(a)]);
        for (int b = 0; b < traces.cols(); ++b) text += "  " + formatNumber(traces(a, b), picture);
        text += "\n";
    }
    return text;
}

Eigen::MatrixXd correlationOf(const Eigen::MatrixXd& traces) {
    Eigen::MatrixXd result = Eigen::MatrixXd::Zero(traces.rows(), traces.cols());
    for (int a = 0; a < traces.rows(); ++a)
        for (int b = 0; b < traces.cols(); ++b) {
            const double norm = std::sqrt(traces(a, a) * traces(b, b));
            result(a, b) = norm > 0.0 ? traces(a, b) / norm : 0.0;
        }
    return result;
}

int rankOfOperator(std::size_t index) { return index < 3 ? kSpinSpinRank : kSpinOtherOrbitRank; }

std::vector<std::string> slice(const std::vector<std::string>& v, std::size_t from, std::size_t to) {
    return {v.begin() + static_cast<long>(from), v.begin() + static_cast<long>(to)};
}

}  // namespace

std::vector<MagneticOperators> magneticOperatorsOfAll(const std::vector<ConfigurationTables>& tables) {
    // Spin-spin, spin-other-orbit and correlated spin-orbit keep their sign in
    // the conjugate shell: f^n uses the operators of f^(14-n) unchanged.
    return operatorsOfEveryShell<MagneticOperators>(
        tables, 2, zeroMagneticOperators, magneticOperatorsOfF2, escalateMagneticOperators,
        [](const MagneticOperators& same) { return same; });
}

std::vector<Eigen::MatrixXd> magneticOperatorList(const MagneticOperators& operators) {
    std::vector<Eigen::MatrixXd> list(operators.spinSpin.begin(), operators.spinSpin.end());
    list.insert(list.end(), operators.spinOtherOrbit.begin(), operators.spinOtherOrbit.end());
    return list;
}

std::vector<std::string> magneticOperatorNames() {
    return {"mss0", "mss2", "mss4", "msoo0", "msoo2", "msoo4", "p2", "p4", "p6"};
}

std::string pairRecordsText(const std::string& title, const std::vector<Eigen::MatrixXd>& matrices) {
    std::string text = title + "\n";
    const int T = matrices.empty() ? 0 : static_cast<int>(matrices.front().rows());
    for (int i = 0; i < T; ++i)
        for (int j = i; j < T; ++j) {
            double size = 0.0;
            for (const auto& m : matrices) size += std::abs(m(i, j));
            if (size < kZeroThreshold) continue;
            text += std::to_string(i + 1) + " " + std::to_string(j + 1) + " ";
            for (const auto& m : matrices) text += "  " + valueText(m(i, j));
            text += "\n";
        }
    return text;
}

Eigen::MatrixXd magneticTraceMatrix(const MagneticOperators& operators) {
    const auto list = magneticOperatorList(operators);
    const auto count = list.size();
    Eigen::MatrixXd traces = Eigen::MatrixXd::Zero(static_cast<int>(count), static_cast<int>(count));
    for (std::size_t a = 0; a < count; ++a)
        for (std::size_t b = 0; b < count; ++b)
            if (rankOfOperator(a) == rankOfOperator(b))
                traces(static_cast<int>(a), static_cast<int>(b)) =
                    doubleTensorProductTrace(rankOfOperator(a), list[a], list[b]);
    return traces;
}

std::vector<std::filesystem::path> writeMagneticTables(int n, const std::vector<TermRecord>& terms,
                                                       const MagneticOperators& operators,
                                                       const std::filesystem::path& directory, LogBook& log) {
    std::vector<std::filesystem::path> written;
    const std::string shell = std::to_string(n);
    auto write = [&](const std::string& name, const std::string& text) {
        const auto path = directory / configurationFileName(n, name);
        writeGeneratedTable(path, text);
        written.push_back(path);
    };
    const auto names = magneticOperatorNames();
    const auto list = magneticOperatorList(operators);
    const Eigen::MatrixXd traces = magneticTraceMatrix(operators);
    const std::vector<Eigen::MatrixXd> spinSpin(list.begin(), list.begin() + 3);
    const std::vector<Eigen::MatrixXd> rankOne(list.begin() + 3, list.end());
    const std::string version = std::string("  [") + kTableGeneratorVersion + "]";

    log.appendLine("Starting building reduced matrix elements of the zi  operator (i=0..4 Hss) of f" + shell);
    write("rmziss.val", pairRecordsText("Reduced matrix elements of spin-spin operators (M0 M2 M4) for f" + shell +
                                            " shell" + version,
                                        spinSpin));
    write("mess.txt", pairRecordsText("Reduced matrix elements of mk (Hss with k=0,2,4) for f" + shell, spinSpin));
    log.appendLine("Finished building reduced matrix elements of the zi  operator (i=0..4 Hss) and mk operator for Hss of f" +
                   shell);

    log.appendLine(
        "Starting converting reduced matrix elements of the zi  operator (i=0..4 Hss) into mk operator of Hss and check orthogonality for f" +
        shell);
    write("mess.val", pairRecordsText("Reduced matrix elements of mk of Hss (M0 M2 M4) for f" + shell + " shell" + version,
                                      spinSpin));
    write("rmz1-4.txt", traceListing("Check orthogonality between mssk (k=0,2,4)", slice(names, 0, 3),
                                     traces.topLeftCorner(3, 3), "#0.000000"));
    log.appendLine(
        "Finished building reduced matrix elements of the zi operator (i=0..4 Hss) and mk operator for Hss and check orthogonality for f" +
        shell);

    log.appendLine("Starting building reduced matrix elements of the zi and zc operator (Hsoo and Hci)  for f" + shell);
    write("rmzic.val", pairRecordsText("Reduced matrix elements of spin-other-orbit and correlated spin-orbit operators "
                                       "(M0 M2 M4 P2 P4 P6) for f" +
                                           shell + " shell" + version,
                                       rankOne));
    write("mesooci.txt",
          pairRecordsText("Reduced matrix elements of mk (Hsoo with k=0,2,4) and pk (ci with k=2,4,6) for f" + shell,
                          rankOne));
    log.appendLine("Finished building reduced matrix elements of the zi and zc operator (Hsoo and Hci)  for f" + shell);

    log.appendLine("Starting converting reduced matrix elements of the zi and zc operator (Hsoo and Hci)  for f" + shell);
    write("mesooci.val", pairRecordsText("Reduced matrix elements of mk (Hsoo) and pk (Hci) (M0 M2 M4 P2 P4 P6) for f" +
                                             shell + " shell" + version,
                                         rankOne));
    write("rmz5-11c.txt", traceListing("Check orthogonality between msook (k=0,2,4) and pk (k=2,4,6)",
                                       slice(names, 3, 9), traces.bottomRightCorner(6, 6), "#0.000000"));
    log.appendLine(
        "Finished building reduced matrix elements of the zi operator (5...11 c) and mk operator for Hsoo/el-so  and check orthogonality for f" +
        shell);

    log.appendLine(
        "Starting: check orthogonality relation of matrix elements of the zi (i=0..11) and zc operator (Hss, Hsoo and Hci) and build matrix elements of mssk, msook,and  pk for f" +
        shell);
    const auto now = localNow();
    log.appendLine("Starting at " + formatTime(now));
    std::string labels;
    for (std::size_t i = 0; i < terms.size(); ++i) labels += fmt::format("{} {}\n", i + 1, terms[i].label);
    std::string all = pairRecordsText("Reduced matrix elements of mssk, msook and pk for f" + shell + " shell" + version, list);
    all.insert(all.find('\n') + 1, labels);
    write("memkpk.val", all);
    write("memkpk.txt",
          traceListing("Check orthogonality between mssk (k=0,2,4), msook (k=0,2,4) and k (k=2,4,6)", names, traces,
                       "####0.000000") +
              traceListing("Correlation coeffs. between mssk (k=0,2,4), msook (k=0,2,4) and k (k=2,4,6)", names,
                           correlationOf(traces), "####0.000000"));
    log.appendLine(
        "Finished building reduced matrix elements of the zi operator (0...11 c) and mk operator for Hss, Hsoo/el-so  and check orthogonality for f" +
        shell);
    return written;
}

}  // namespace orvane
