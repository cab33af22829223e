#include "tables/magnetic_operators.hpp"

#include <algorithm>
#include <cmath>
#include <map>
#include <stdexcept>
#include <string>

#include "tables/two_body_escalation.hpp"

namespace orvane {

namespace {

// Denominators of the subscripted P_k = P^k / D_k (Judd, Crosswhite & Crosswhite 1968).
constexpr std::array<double, 3> kPDenominator{225.0, 1089.0, 184041.0 / 25.0};

struct SeedRow {
    const char* bra;
    const char* ket;
    std::array<double, 3> marvin;  // coefficients of M0, M2, M4
};

struct CorrelatedRow {
    const char* bra;
    const char* ket;
    std::array<double, 4> p;  // coefficients of P0, P2, P4, P6 (subscripted)
    double z13;               // the spin-orbit-like operator z13
};

double root(double x) { return std::sqrt(x); }

// Judd, Crosswhite & Crosswhite 1968, table I: spin-spin T(22) in f^2.
std::vector<SeedRow> spinSpinSeed() {
    const double a = 8.0 / root(3.0), b = 4.0 / 3.0 * root(14.0), c = 8.0 / 3.0 * root(11.0 / 2.0),
                 d = 4.0 / 3.0 * root(143.0);
    return {
        {"3P", "3P", {-12.0, -24.0, -300.0 / 11.0}},
        {"3P", "3F", {3.0 * a, a, -100.0 / 11.0 * a}},
        {"3F", "3F", {-b, 8.0 * b, -200.0 / 11.0 * b}},
        {"3F", "3H", {2.0 * c, -23.0 / 11.0 * c, -325.0 / 121.0 * c}},
        {"3H", "3H", {d, -34.0 / 11.0 * d, -1325.0 / 1573.0 * d}},
    };
}

// Judd, Crosswhite & Crosswhite 1968, table II: spin-other-orbit T(11) in f^2.
std::vector<SeedRow> spinOtherOrbitSeed() {
    const double a = -root(2.0 / 15.0), b = root(2.0 / 5.0), c = 2.0 * root(14.0), d = root(11.0),
                 e = 8.0 / root(55.0), f = root(26.0);
    return {
        {"1S", "3P", {6.0, 2.0, 10.0 / 11.0}},
        {"3P", "3P", {-36.0, -72.0, -900.0 / 11.0}},
        {"3P", "1D", {27.0 * a, 14.0 * a, 115.0 / 11.0 * a}},
        {"1D", "3F", {23.0 * b, 6.0 * b, -195.0 / 11.0 * b}},
        {"3F", "3F", {-15.0 * c, -c, 10.0 / 11.0 * c}},
        {"3F", "1G", {-6.0 * d, 64.0 / 33.0 * d, -1240.0 / 363.0 * d}},
        {"1G", "3H", {39.0 * b, -728.0 / 33.0 * b, -3175.0 / 363.0 * b}},
        {"3H", "3H", {-132.0 * e, 23.0 * e, 130.0 / 11.0 * e}},
        {"3H", "1I", {-5.0 * f, -30.0 / 11.0 * f, -375.0 / 1573.0 * f}},
    };
}

// Judd, Crosswhite & Crosswhite 1968, tables VII and IX: correlated spin-orbit t(11)
// and z13 in f^2.
std::vector<CorrelatedRow> correlatedSeed() {
    const double a = root(15.0 / 2.0), b = root(10.0), c = root(14.0), d = root(11.0), e = root(55.0),
                 f = root(13.0 / 2.0);
    auto scaled = [](double s, std::array<double, 4> v) {
        for (auto& x : v) x *= s;
        return v;
    };
    return {
        {"1S", "3P", {-2.0, -105.0, -231.0, -429.0}, 2.0},
        {"3P", "3P", {-1.0, -45.0, -33.0, 1287.0}, 1.0},
        {"3P", "1D", scaled(a, {1.0, 32.0, -33.0, -286.0}), -a},
        {"1D", "3F", scaled(b, {-1.0, -4.5, 66.0, -214.5}), b},
        {"3F", "3F", scaled(c, {-1.0, 10.0, 33.0, 286.0}), c},
        {"3F", "1G", scaled(d, {1.0, -20.0, 32.0, -104.0}), -d},
        {"1G", "3H", scaled(b, {-1.0, 27.5, -23.0, -32.5}), b},
        {"3H", "3H", scaled(e, {-1.0, 25.0, 51.0, 13.0}), e},
        {"3H", "1I", scaled(f, {1.0, 0.0, -21.0, -6.0}), -f},
    };
}

// Chen, Liu, Margerie & Reid 2008 (after JCC 1968): the coefficients a13 of z13 in
// T(11) + t(11); the operator used is T(11) + t(11) - (a13/6) z13.
constexpr std::array<double, 3> kA13Marvin{-33.0, 3.0, 15.0 / 11.0};
constexpr std::array<double, 4> kA13Correlated{-6.0, 1.5 * 35.0, 1.5 * 77.0, 1.5 * 143.0};

class PairPlacer {
public:
    explicit PairPlacer(const std::vector<TermRecord>& terms) : spinOrbit_(spinOrbitOf(terms)) {
        for (std::size_t i = 0; i < terms.size(); ++i) index_[terms[i].label] = static_cast<int>(i);
    }
    int size() const { return static_cast<int>(spinOrbit_.size()); }
    // Sets <bra||X||ket> and the transposed element with (-1)^(S_a - S_b + L_a - L_b).
    void place(Eigen::MatrixXd& m, const std::string& bra, const std::string& ket, double value) const {
        const int a = at(bra), b = at(ket);
        const auto& sa = spinOrbit_[static_cast<std::size_t>(a)];
        const auto& sb = spinOrbit_[static_cast<std::size_t>(b)];
        m(a, b) = value;
        m(b, a) = (((sa.twiceS - sb.twiceS) / 2 + sa.L - sb.L) % 2 == 0 ? 1.0 : -1.0) * value;
    }

private:
    int at(const std::string& label) const {
        const auto it = index_.find(label);
        if (it == index_.end()) throw std::invalid_argument("f2 term " + label + " not found");
        return it->second;
    }
    std::vector<TermSpinOrbit> spinOrbit_;
    std::map<std::string, int> index_;
};

}  // namespace

MagneticOperators zeroMagneticOperators(int termCount) {
    MagneticOperators result;
    for (auto& m : result.spinSpin) m = Eigen::MatrixXd::Zero(termCount, termCount);
    for (auto& m : result.spinOtherOrbit) m = Eigen::MatrixXd::Zero(termCount, termCount);
    return result;
}

// Judd, Crosswhite & Crosswhite 1968 tables I, II, VII, IX; z13 correction of Chen et al. 2008.
MagneticOperators magneticOperatorsOfF2(const std::vector<TermRecord>& f2Terms) {
    const PairPlacer placer(f2Terms);
    MagneticOperators result = zeroMagneticOperators(placer.size());
    for (const auto& row : spinSpinSeed())
        for (std::size_t c = 0; c < 3; ++c) placer.place(result.spinSpin[c], row.bra, row.ket, row.marvin[c]);
    // The (11) operator: T(11) + t(11) - (a13/6) z13, the P_k columns divided by D_k to
    // give coefficients of P^k. z13's M columns come from both tables, so sum them per pair.
    std::map<std::pair<std::string, std::string>, std::array<double, 6>> sums;
    for (const auto& row : spinOtherOrbitSeed()) {
        auto& s = sums[{row.bra, row.ket}];
        for (std::size_t c = 0; c < 3; ++c) s[c] += row.marvin[c];
    }
    for (const auto& row : correlatedSeed()) {
        auto& s = sums[{row.bra, row.ket}];
        for (std::size_t c = 0; c < 3; ++c) s[c] -= kA13Marvin[c] / 6.0 * row.z13;
        for (std::size_t k = 0; k < 3; ++k)
            s[3 + k] += (row.p[k + 1] - kA13Correlated[k + 1] / 6.0 * row.z13) / kPDenominator[k];
    }
    for (const auto& [pair, values] : sums)
        for (std::size_t c = 0; c < 6; ++c) placer.place(result.spinOtherOrbit[c], pair.first, pair.second, values[c]);
    return result;
}

MagneticOperators escalateMagneticOperators(int n, const std::vector<TermSpinOrbit>& terms,
                                            const std::vector<TermSpinOrbit>& parents,
                                            const Eigen::MatrixXd& cfp, const MagneticOperators& parent) {
    MagneticOperators result;
    const auto spinSpin = escalateTwoBodyDoubleTensors(
        n, kSpinSpinRank, terms, parents, cfp, std::vector<Eigen::MatrixXd>(parent.spinSpin.begin(), parent.spinSpin.end()));
    const auto rankOne = escalateTwoBodyDoubleTensors(
        n, kSpinOtherOrbitRank, terms, parents, cfp, 
        std::vector<Eigen::MatrixXd>(parent.spinOtherOrbit.begin(), parent.spinOtherOrbit.end()));
    std::copy(spinSpin.begin(), spinSpin.end(), result.spinSpin.begin());
    std::copy(rankOne.begin(), rankOne.end(), result.spinOtherOrbit.begin());
    return result;
}

}  // namespace orvane
