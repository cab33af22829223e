#include "tables/reduced_tables.hpp"

#include <cmath>
#include <vector>

#include <fmt/format.h>

#include "core/angular.hpp"
#include "core/number_format.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"
#include "tables/state_labels.hpp"

namespace orvane {

namespace {

constexpr int kTwiceL = 6;   // l = 3
constexpr double kWriteCut = 1e-13;

double sign(int exponent) { return (exponent % 2 == 0) ? 1.0 : -1.0; }

// {L k L'; l Lbar l} for L, L', Lbar = 0..12 and k = 0..6, computed once.
double orbitalSixJ(int L, int k, int Lp, int Lbar) {
    static const std::vector<double> table = [] {
        std::vector<double> values(13 * 7 * 13 * 13);
        for (int a = 0; a < 13; ++a)
            for (int r = 0; r < 7; ++r)
                for (int b = 0; b < 13; ++b)
                    for (int c = 0; c < 13; ++c)
                        values[static_cast<std::size_t>(((a * 7 + r) * 13 + b) * 13 + c)] =
                            SixJ2(2 * a, 2 * r, 2 * b, kTwiceL, 2 * c, kTwiceL);
        return values;
    }();
    if (L > 12 || Lp > 12 || Lbar > 12 || k > 6) return SixJ2(2 * L, 2 * k, 2 * Lp, kTwiceL, 2 * Lbar, kTwiceL);
    return table[static_cast<std::size_t>(((L * 7 + k) * 13 + Lp) * 13 + Lbar)];
}

}  // namespace

std::string tableFileName(TableOperator op, int rank) {
    switch (op) {
        case TableOperator::U: return fmt::format("rmu{}.val", rank);
        case TableOperator::V1: return fmt::format("rmv1{}.val", rank);
        case TableOperator::Lccf: return fmt::format("RMULCCF{}.val", rank);
        case TableOperator::F: return fmt::format("rmf{}.val", rank);
    }
    return {};
}

std::string operatorName(TableOperator op, int rank) {
    switch (op) {
        case TableOperator::U: return fmt::format("U({})", rank);
        case TableOperator::V1: return fmt::format("V(1{})", rank);
        case TableOperator::Lccf: return fmt::format("UK(LCCF){}", rank);
        case TableOperator::F: return fmt::format("f({})", rank);
    }
    return {};
}

std::vector<TermSpinOrbit> spinOrbitOf(const std::vector<TermRecord>& terms) {
    std::vector<TermSpinOrbit> result;
    for (const auto& t : terms) result.push_back({twiceSpinOf(t), orbitalOf(t)});
    return result;
}

// Racah 1943, Phys. Rev. 63, 367, eq. (44).
Eigen::MatrixXd unitTensorMatrix(int n, int k, const std::vector<TermSpinOrbit>& terms,
                                 const std::vector<TermSpinOrbit>& parents,
                                 const Eigen::MatrixXd& cfp) {
    const int T = static_cast<int>(terms.size());
    Eigen::MatrixXd result = Eigen::MatrixXd::Zero(T, T);
    for (int i = 0; i < T; ++i)
        for (int j = 0; j < T; ++j) {
            const auto& a = terms[static_cast<std::size_t>(i)];
            const auto& b = terms[static_cast<std::size_t>(j)];
            if (a.twiceS != b.twiceS) continue;
            long double sum = 0.0;  // extended accumulation keeps sums of ~100 products at 1e-15
            for (int p = 0; p < cfp.cols(); ++p) {
                const double product = cfp(i, p) * cfp(j, p);
                if (product == 0.0) continue;
                const int Lbar = parents[static_cast<std::size_t>(p)].L;
                sum += product * sign(Lbar + 3 + a.L + k) * orbitalSixJ(a.L, k, b.L, Lbar);
            }
            result(i, j) = n * std::sqrt((2 * a.L + 1.0) * (2 * b.L + 1.0)) * static_cast<double>(sum);
        }
    return result;
}

// The double-tensor form of Racah 1943, eq. (44) (docs/conventions.md).
Eigen::MatrixXd doubleTensorMatrix(int n, int k, const std::vector<TermSpinOrbit>& terms,
                                   const std::vector<TermSpinOrbit>& parents,
                                   const Eigen::MatrixXd& cfp) {
    const int T = static_cast<int>(terms.size());
    Eigen::MatrixXd result = Eigen::MatrixXd::Zero(T, T);
    for (int i = 0; i < T; ++i)
        for (int j = 0; j < T; ++j) {
            const auto& a = terms[static_cast<std::size_t>(i)];
            const auto& b = terms[static_cast<std::size_t>(j)];
            if (std::abs(a.twiceS - b.twiceS) > 2) continue;
            long double sum = 0.0;  // extended accumulation keeps sums of ~100 products at 1e-15
            for (int p = 0; p < cfp.cols(); ++p) {
                const double product = cfp(i, p) * cfp(j, p);
                if (product == 0.0) continue;
                const auto& parent = parents[static_cast<std::size_t>(p)];
                // exponent Sbar + s + S + 1 + Lbar + l + L + k, all doubled then halved
                const int twiceExponent = parent.twiceS + 1 + a.twiceS + 2 + 2 * parent.L + 6 + 2 * a.L + 2 * k;
                sum += product * sign(twiceExponent / 2) *
                       SixJ2(a.twiceS, 2, b.twiceS, 1, parent.twiceS, 1) *
                       orbitalSixJ(a.L, k, b.L, parent.L);
            }
            result(i, j) = n * std::sqrt(1.5 * (a.twiceS + 1.0) * (b.twiceS + 1.0) *
                                         (2 * a.L + 1.0) * (2 * b.L + 1.0)) * static_cast<double>(sum);
        }
    return result;
}

// Slater 1929 (psi'' over every L'' of the same S; docs/conventions.md).
Eigen::MatrixXd coulombMatrix(int n, int k, const std::vector<TermSpinOrbit>& terms,
                              const Eigen::MatrixXd& unitTensor) {
    const int T = static_cast<int>(terms.size());
    const double ck = ReducedCk(3, k, 3);
    Eigen::MatrixXd result = Eigen::MatrixXd::Zero(T, T);
    for (int i = 0; i < T; ++i)
        for (int j = 0; j < T; ++j) {
            const auto& a = terms[static_cast<std::size_t>(i)];
            const auto& b = terms[static_cast<std::size_t>(j)];
            if (a.twiceS != b.twiceS || a.L != b.L) continue;
            const double sum = unitTensor.row(i).dot(unitTensor.row(j)) / (2 * a.L + 1.0);
            result(i, j) = 0.5 * ck * ck * (sum - (i == j ? n / 7.0 : 0.0));
        }
    return result;
}

Eigen::MatrixXd completeFromStoredHalf(const Eigen::MatrixXd& stored,
                                       const std::vector<TermSpinOrbit>& terms) {
    Eigen::MatrixXd full = stored;
    for (int i = 0; i < stored.rows(); ++i)
        for (int j = i + 1; j < stored.cols(); ++j) {
            const auto& a = terms[static_cast<std::size_t>(i)];
            const auto& b = terms[static_cast<std::size_t>(j)];
            full(j, i) = sign((a.twiceS - b.twiceS) / 2 + a.L - b.L) * stored(i, j);
        }
    return full;
}

std::string reducedTableFileText(std::string_view title, const Eigen::MatrixXd& matrix) {
    std::string text(title);
    text += '\n';
    for (int i = 0; i < matrix.rows(); ++i)
        for (int j = i; j < matrix.cols(); ++j)
            if (std::abs(matrix(i, j)) > kWriteCut)
                text += generalNumber(i + 1) + " " + generalNumber(j + 1) + "  " +
                        generalNumber(matrix(i, j)) + '\n';
    return text;
}

Eigen::MatrixXd parseReducedTable(std::string_view text, int termCount, const std::string& fileName) {
    Eigen::MatrixXd stored = Eigen::MatrixXd::Zero(termCount, termCount);
    int lineNumber = 0;
    std::size_t start = 0;
    const std::string title = "Error in reading reduced matrix elements";
    while (start < text.size()) {
        auto end = text.find('\n', start);
        if (end == std::string_view::npos) end = text.size();
        const auto line = text.substr(start, end - start);
        start = end + 1;
        if (++lineNumber == 1) continue;
        const auto fields = splitFields(commasToBlanks(line));
        if (fields.empty()) continue;
        if (fields.size() != 3)
            throw UserError(title, fmt::format("expected three numbers (i j value), found {} fields", fields.size()),
                            FileLocation{fileName, lineNumber});
        const auto i = parseInteger(fields[0]);
        const auto j = parseInteger(fields[1]);
        const auto value = parseNumber(fields[2]);
        if (!i || !j || !value)
            throw UserError(title, "a field is not a number", FileLocation{fileName, lineNumber});
        if (*i < 1 || *j < 1 || *i > termCount || *j > termCount)
            throw UserError(title, fmt::format("term index out of range (1 to {})", termCount),
                            FileLocation{fileName, lineNumber});
        stored(*i - 1, *j - 1) = *value;
    }
    return stored;
}

// Racah 1949, Phys. Rev. 76, 1352, with f^k = D_k f_k.
std::array<Eigen::MatrixXd, 3> racahElectrostaticOperators(int n, const Eigen::MatrixXd& f2,
                                                           const Eigen::MatrixXd& f4,
                                                           const Eigen::MatrixXd& f6) {
    const Eigen::MatrixXd g2 = 225.0 * f2, g4 = 1089.0 * f4, g6 = (184041.0 / 25.0) * f6;
    const Eigen::MatrixXd identity = Eigen::MatrixXd::Identity(f2.rows(), f2.cols());
    const double f0 = n * (n - 1) / 2.0;
    return {Eigen::MatrixXd((9.0 / 7.0) * f0 * identity + g2 / 42.0 + g4 / 77.0 + g6 / 462.0),
            Eigen::MatrixXd((143.0 / 42.0) * g2 - (130.0 / 77.0) * g4 + (35.0 / 462.0) * g6),
            Eigen::MatrixXd((11.0 / 42.0) * g2 + (4.0 / 77.0) * g4 - (7.0 / 462.0) * g6)};
}

ElectrostaticTraces electrostaticTraces(int n, const std::vector<TermSpinOrbit>& terms,
                                        const Eigen::MatrixXd& f2, const Eigen::MatrixXd& f4,
                                        const Eigen::MatrixXd& f6) {
    const auto e = racahElectrostaticOperators(n, f2, f4, f6);
    Eigen::VectorXd weight(static_cast<int>(terms.size()));
    for (std::size_t i = 0; i < terms.size(); ++i)
        weight[static_cast<int>(i)] = (terms[i].twiceS + 1.0) * (2 * terms[i].L + 1.0);
    auto trace = [&](const Eigen::MatrixXd& a, const Eigen::MatrixXd& b) {
        return (weight.asDiagonal() * (a * b)).trace();
    };
    ElectrostaticTraces traces;
    for (int i = 0; i < 3; ++i) traces.squares[static_cast<std::size_t>(i)] = trace(e[i], e[i]);
    traces.products = {trace(e[0], e[1]), trace(e[0], e[2]), trace(e[1], e[2])};
    return traces;
}

std::vector<std::string> electrostaticTraceLines(const ElectrostaticTraces& traces) {
    std::vector<std::string> lines;
    for (int i = 0; i < 3; ++i)
        lines.push_back(fmt::format("Trace^2 for e{} = {}", i + 1,
                                    generalNumber(traces.squares[static_cast<std::size_t>(i)])));
    const std::array<std::pair<int, int>, 3> pairs{{{1, 2}, {1, 3}, {2, 3}}};
    for (std::size_t p = 0; p < pairs.size(); ++p)
        lines.push_back(fmt::format("Trace of operaotr product between e{} and e{} = {}",
                                    pairs[p].first, pairs[p].second, generalNumber(traces.products[p])));
    return lines;
}

}  // namespace orvane
