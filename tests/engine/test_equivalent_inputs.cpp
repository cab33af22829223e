// Two descriptions of one Hamiltonian must give the same levels: the conjugate
// route f^(14-n) against the tables of f^n itself (zeta, B(k,q), T2', T3..T8
// negated, T2 by its own rule, M^k, P^k and spin-spin unchanged), Racah's E^k
// against Slater's F^k, "/t2correction" (the e3 part of T2 moved into the F^k),
// the Stevens and unit-operator crystal-field conventions against Wybourne's,
// and one cubic field seen along [001] and along [111].
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "core/angular.hpp"
#include "params/stevens_lambda.hpp"
#include "tests/engine/engine_test_support.hpp"

namespace orvane {
namespace {

using test::bkq;
using test::row;

struct EquivalenceCase {
    std::string name;
    ParameterSet first, second;
    bool relative = false;  // equal up to one constant
    EnergyLevelOptions options{};
};
void PrintTo(const EquivalenceCase& c, std::ostream* os) { *os << c.name; }

EquivalenceCase conjugateRoute(int n, int fold) {
    auto set = test::neodymiumLikeSet(n);
    set.fold = fold;
    set.crystalField = fold == 1 ? test::lowSymmetryCrystalField()
                       : fold == 4
                           ? std::vector<CrystalFieldRow>{bkq(2, 0, -300), bkq(4, 0, 700), bkq(4, 4, 500),
                                                          bkq(6, 0, 650), bkq(6, 4, -400)}
                           : std::vector<CrystalFieldRow>{bkq(2, 0, -256), bkq(4, 0, 496), bkq(4, 3, 410),
                                                          bkq(6, 0, 641), bkq(6, 3, -380), bkq(6, 6, -831)};
    auto actual = set;
    actual.switches.actualShell = true;
    return {"conjugate_f" + std::to_string(n) + "_fold" + std::to_string(fold), set, actual, true};
}

// Pr3+ free ion (Carnall et al. 1989, Table I) with F^k and with the E^k of Racah 1949,
// F_k = F^k / D_k, D_k = 225, 1089, 184041/25.
EquivalenceCase racahForm() {
    auto slater = test::praseodymiumLikeSet(2, 751.7, {}, 1);
    const double F2 = 68878 / 225.0, F4 = 50347 / 1089.0, F6 = 32901 / (184041.0 / 25.0);
    auto racah = slater;
    racah.mainFreeIon = {row("EAVG", 0.0), row("F2", (70 * F2 + 231 * F4 + 2002 * F6) / 9),
                         row("F4", (F2 - 3 * F4 + 7 * F6) / 9), row("F6", (5 * F2 + 6 * F4 - 91 * F6) / 3),
                         row("ZETA", 751.7)};
    racah.slaterType = SlaterType::RacahE;
    return {"racah_form", slater, racah, true, {false}};
}

EquivalenceCase t2Correction(int n, bool actualShell) {
    auto set = test::neodymiumLikeSet(n);
    set.switches.actualShell = actualShell;
    auto corrected = set;
    corrected.switches.t2Correction = true;
    return {"t2correction_f" + std::to_string(n) + (actualShell ? "_actual_shell" : ""), set, corrected, false,
            {false}};
}

// Pr3+:LaF3 B(k,q) with invented imaginary parts, in Wybourne's form and converted: Stevens
// A(q,k)<r^k> = lambda(k,q) Re B(k,q), A(-q,k)<r^k> = -lambda(k,q) Im B(k,q) (lambda as checked
// in tests/params); unit operators B(U) = <f||C(k)||f> B.
EquivalenceCase convention(CfConvention form) {
    const double im[] = {0, 40, 0, -90, 55, 0, 30, -70, 120};
    auto wybourne = test::laf3CrystalField();
    std::vector<CrystalFieldRow> other;
    for (std::size_t i = 0; i < wybourne.size(); ++i) {
        auto& r = wybourne[i];
        r = bkq(r.k, r.q, r.re.value, im[i]);
        const bool stevens = form == CfConvention::Stevens;
        const double f = stevens ? params::stevensFactor(r.k, r.q) : ReducedCk2(6, 2 * r.k, 6);
        other.push_back(bkq(r.k, r.q, f * r.re.value, (stevens ? -f : f) * r.im.value));
    }
    auto second = test::praseodymiumLikeSet(2, 751.7, other, 2);
    second.cfConvention = form;
    return {form == CfConvention::Stevens ? "stevens_convention" : "unit_operator_convention",
            test::praseodymiumLikeSet(2, 751.7, wybourne, 2), second, false, {true, false, true}};
}

// One cubic field along [001] and [111]: B40(111) = -(2/3) B40(001), B60(111) = (16/9) B60(001).
EquivalenceCase cubicAxes() {
    auto axis001 = test::praseodymiumLikeSet(2, 751.7, {bkq(4, 0, 900), bkq(6, 0, 450)}, 4);
    axis001.switches.cubicCF = true;
    auto axis111 = test::praseodymiumLikeSet(2, 751.7, {bkq(4, 0, -600), bkq(6, 0, 800)}, 3);
    axis111.switches.cubicCF = true;
    return {"cubic_001_and_111", axis001, axis111};
}

std::vector<EquivalenceCase> equivalenceCases() {
    std::vector<EquivalenceCase> cases = {conjugateRoute(13, 1), conjugateRoute(12, 1), conjugateRoute(11, 1),
                                          conjugateRoute(10, 4), conjugateRoute(9, 3),  conjugateRoute(8, 3),
                                          racahForm(),           convention(CfConvention::Stevens),
                                          convention(CfConvention::UnitOperators), cubicAxes()};
    for (int n : {3, 11})
        for (bool actualShell : {false, true}) cases.push_back(t2Correction(n, actualShell));
    return cases;
}

class EquivalentInputs : public ::testing::TestWithParam<EquivalenceCase> {};

TEST_P(EquivalentInputs, GiveTheSameLevels) {
    const auto& c = GetParam();
    const auto a = test::levelEnergies(test::runLevels(c.first, c.options), c.relative);
    const auto b = test::levelEnergies(test::runLevels(c.second, c.options), c.relative);
    EXPECT_LT(test::largestDifference(a, b), 1e-6);
    EXPECT_GT(a.back() - a.front(), 1000.0) << "a spectrum of the whole configuration";
}

INSTANTIATE_TEST_SUITE_P(Engine, EquivalentInputs, ::testing::ValuesIn(equivalenceCases()),
                         [](const auto& info) { return info.param.name; });

}  // namespace
}  // namespace orvane
