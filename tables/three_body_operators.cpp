#include "tables/three_body_operators.hpp"

#include <cmath>
#include <map>
#include <stdexcept>

#include "tables/two_body_escalation.hpp"

namespace orvane {

namespace {

// Judd & Suskin 1984: normalisers F_i of t2', t3, t4, t6, t7, t8; the f^3 element
// is (integer x sqrt(radicand)) / F_i.
const std::array<double, kThreeBodyOperatorCount>& normalisers() {
    static const std::array<double, kThreeBodyOperatorCount> values{
        770.0 * std::sqrt(2.0),        std::sqrt(6720.0),        56.0 * std::sqrt(15015.0),
        924.0 * std::sqrt(455.0),      168.0 * std::sqrt(5005.0), std::sqrt(16336320.0)};
    return values;
}

struct SeedRow {
    const char* bra;
    const char* ket;
    int radicand;
    std::array<int, kThreeBodyOperatorCount> numerators;  // t2', t3, t4, t6, t7, t8
};

// Hansen, Judd & Crosswhite 1996, the f^3 table (t2', t3, t4, t6, t7, t8), written as
// integer x sqrt(radicand) over the normalisers; 2F1-2F2 with Orvane's relative phase.
constexpr SeedRow kF3Seed[] = {
    {"4S", "4S", 1, {0, 288, 0, 0, 0, 0}},
    {"4D", "4D", 1, {847, 8, -8008, 0, 0, 0}},
    {"4F", "4F", 1, {0, -72, 0, 0, 0, 0}},
    {"4G", "4G", 1, {308, 8, 7280, 0, 0, 0}},
    {"4I", "4I", 1, {-539, 8, -1960, 0, 0, 0}},
    {"2P", "2P", 1, {-154, -48, 0, -30030, 0, 0}},
    {"2D1", "2D1", 1, {-176, 32, -1144, 12870, 10296, 0}},
    {"2D1", "2D2", 33, {-12, 0, 468, -624, 156, 0}},
    {"2D2", "2D2", 1, {-321, -3, 3237, -1677, -1833, 4641}},
    {"2F1", "2F2", 22, {-231, 0, 0, 0, 0, 0}},  // published +231: relative phase of 2F1, 2F2
    {"2F2", "2F2", 1, {-378, -3, 1365, 1365, -1365, -3315}},
    {"2G1", "2G1", 1, {-64, 32, 1040, 4680, -9360, 0}},
    {"2G1", "2G2", 4290, {-1, 0, -24, -52, -8, 0}},
    {"2G2", "2G2", 1, {-286, -3, -2475, 1221, 1947, 1309}},
    {"2H1", "2H1", 1, {42, -48, 0, 8190, 0, 0}},
    {"2H1", "2H2", 455, {0, 0, 84, 0, 252, 0}},
    {"2H2", "2H2", 1, {-21, -3, -1995, -2709, 567, -1071}},
    {"2I", "2I", 1, {112, 32, -280, -8190, 2520, 0}},
    {"2K", "2K", 1, {161, -3, 1827, -252, 21, -1071}},
    {"2L", "2L", 1, {273, -3, -525, 1260, -315, 945}},
};

constexpr int kThreeBodies = 3;

}  // namespace

std::string threeBodyOperatorName(int index) {
    static const std::array<const char*, kThreeBodyOperatorCount> names{"t2'", "t3", "t4", "t6", "t7", "t8"};
    return names.at(static_cast<std::size_t>(index));
}

ThreeBodyOperators zeroThreeBodyOperators(int termCount) {
    ThreeBodyOperators result;
    for (auto& m : result) m = Eigen::MatrixXd::Zero(termCount, termCount);
    return result;
}

// Hansen, Judd & Crosswhite 1996 (f^3 table), Judd & Suskin 1984 (normalisers).
ThreeBodyOperators threeBodyOperatorsOfF3(const std::vector<TermRecord>& f3Terms) {
    std::map<std::string, int> index;
    for (std::size_t i = 0; i < f3Terms.size(); ++i) index[f3Terms[i].label] = static_cast<int>(i);
    auto at = [&](const std::string& label) {
        const auto it = index.find(label);
        if (it == index.end()) throw std::invalid_argument("f3 term " + label + " not found");
        return it->second;
    };
    ThreeBodyOperators result = zeroThreeBodyOperators(static_cast<int>(f3Terms.size()));
    for (const auto& row : kF3Seed) {
        const int a = at(row.bra), b = at(row.ket);
        for (std::size_t c = 0; c < result.size(); ++c) {
            const double value = row.numerators[c] * std::sqrt(static_cast<double>(row.radicand)) / normalisers()[c];
            result[c](a, b) = value;
            result[c](b, a) = value;  // scalar operator between terms of equal S and L: symmetric
        }
    }
    return result;
}

ThreeBodyOperators escalateThreeBodyOperators(int n, const std::vector<TermSpinOrbit>& terms,
                                              const std::vector<TermSpinOrbit>& parents,
                                              const Eigen::MatrixXd& cfp, const ThreeBodyOperators& parent) {
    ThreeBodyOperators result;
    for (std::size_t c = 0; c < result.size(); ++c)
        result[c] = escalateScalarOperator(n, kThreeBodies, terms, parents, cfp, parent[c]);
    return result;
}

ThreeBodyOperators conjugateThreeBodyOperators(const ThreeBodyOperators& operators) {
    ThreeBodyOperators result;
    for (std::size_t c = 0; c < result.size(); ++c) result[c] = -operators[c];
    return result;
}

// Judd 1966; Hansen, Judd & Crosswhite 1996: t2 = t2' + (n - 2) e3 / (70 sqrt 2).
Eigen::MatrixXd legacyT2(int n, const Eigen::MatrixXd& t2Prime, const Eigen::MatrixXd& e3) {
    return t2Prime + ((n - 2) / (70.0 * std::sqrt(2.0))) * e3;
}

}  // namespace orvane
