// The library entry point: derivatives of the energies by the parameters
// (against finite differences and Euler's relation E = sum_p p dE/dp of a
// Hamiltonian linear in its parameters), the refused parameter sets and the
// minimum spin multiplicity.
#include "engine/energy_levels.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "core/user_error.hpp"
#include "engine/energy_levels_derivatives.hpp"
#include "engine/j_basis.hpp"
#include "tests/engine/engine_test_support.hpp"

namespace orvane {
namespace {

using test::row;
using test::bkq;

// Pr3+:LaF3 (Carnall, Goodman, Rajnak & Rana 1989, Table I) without M^k, P^k; C2v Bkq.
ParameterSet praseodymium() {
    ParameterSet set;
    set.electronCount = 2;
    set.fold = 2;
    set.mainFreeIon = {row("EAVG", 10133.3), row("F2", 68878), row("F4", 50347), row("F6", 32901), row("ZETA", 751.7)};
    set.otherFreeIon = {row("ALPHA", 16.23), row("BETA", -566.6), row("GAMMA", 1371)};
    set.crystalField = test::laf3CrystalField();
    return set;
}

EnergyLevelResult run(const ParameterSet& set, bool complex = false) { return test::runLevels(set, {true, true, complex}); }

std::size_t columnOf(const LevelDerivatives& derivatives, const std::string& name) {
    for (std::size_t i = 0; i < derivatives.parameters.size(); ++i)
        if (derivatives.parameters[i] == name) return i;
    ADD_FAILURE() << "no derivative column " << name;
    return 0;
}

// Applied value of every derivative column, for Euler's relation.
double appliedValue(const EnergyLevelResult& result, const std::string& name) {
    if (auto found = result.freeIonWeights.find(name); found != result.freeIonWeights.end()) return found->second;
    for (std::size_t key = 0; key < result.crystalFieldKeys.size(); ++key) {
        const auto& k = result.crystalFieldKeys[key];
        if (name == fmt::format("ReB({},{})", k.k, k.q)) return result.crystalFieldValues[key];
        if (name == fmt::format("ImB({},{})", k.k, k.q)) return result.crystalFieldImaginary[key];
    }
    ADD_FAILURE() << "no parameter " << name;
    return 0.0;
}

void expectEulerRelation(const EnergyLevelResult& result, const LevelDerivatives& derivatives,
                         const std::vector<double>& energies, const char* what) {
    for (Eigen::Index level = 0; level < derivatives.values.rows(); ++level) {
        double sum = 0.0;
        for (std::size_t p = 0; p < derivatives.parameters.size(); ++p)
            sum += appliedValue(result, derivatives.parameters[p]) * derivatives.values(level, p);
        EXPECT_NEAR(sum, energies[level], 1e-7 * (1 + std::abs(energies[level]))) << what << " level " << level;
    }
}

TEST(EnergyLevelDerivatives, EulerRelationForFreeIonAndCrystalFieldLevels) {
    for (bool complex : {false, true}) {
        auto set = praseodymium();
        if (complex) set.crystalField[1] = bkq(2, 2, -120, 75);
        const auto result = run(set, complex);
        std::vector<double> freeIonEnergies, crystalFieldEnergies;
        for (const auto& level : result.freeIon.levels) freeIonEnergies.push_back(level.energy);
        for (const auto& level : result.crystalField.levels) crystalFieldEnergies.push_back(level.energy);
        expectEulerRelation(result, freeIonDerivatives(result), freeIonEnergies, "free ion");
        expectEulerRelation(result, crystalFieldDerivatives(result), crystalFieldEnergies,
                            complex ? "complex crystal field" : "real crystal field");
    }
}

// dE/dp against central differences (step 0.25 cm^-1) for the lowest levels; for odd n
// (Kramers doublets) the derivative of a doublet is the sum over its two vectors.
struct DifferenceCase {
    const char* column;
    std::function<void(ParameterSet&)> prepare;
    std::function<double&(ParameterSet&)> value;
};

TEST(EnergyLevelDerivatives, MatchCentralFiniteDifferences) {
    auto correlated = [](ParameterSet& s) {
        s.fold = 1;
        s.crystalField.push_back(bkq(2, 1, 90));
        s.correlationCF = {{CorrelationKind::Sccf, {bkq(2, 0, 120), bkq(4, 1, -90)}},
                           {CorrelationKind::Lccf, {bkq(6, 3, 12)}}};
        s.switches.correlationSections = true;
    };
    const DifferenceCase cases[] = {
        {"ImB(2,1)",
         [](ParameterSet& s) {
             s.electronCount = 1;
             s.fold = 1;
             s.crystalField.push_back(bkq(2, 1, 140, -90));
         },
         [](ParameterSet& s) -> double& { return s.crystalField.back().im.value; }},
        {"ReSCCF C(4,1)", correlated, [](ParameterSet& s) -> double& { return s.correlationCF[0].rows[1].re.value; }},
        {"ReLCCF D(6,3)", correlated, [](ParameterSet& s) -> double& { return s.correlationCF[1].rows[0].re.value; }},
    };
    for (const auto& c : cases) {
        auto set = praseodymium();
        c.prepare(set);
        const auto derivatives = crystalFieldDerivatives(run(set, true));
        const auto column = columnOf(derivatives, c.column);
        auto plus = set, minus = set;
        c.value(plus) += 0.25;
        c.value(minus) -= 0.25;
        const auto up = test::runLevels(plus, {true, false, true}), down = test::runLevels(minus, {true, false, true});
        const std::size_t step = set.electronCount % 2 == 1 ? 2 : 1;
        for (std::size_t level = 0; level < std::min<std::size_t>(20, up.crystalField.levels.size()); level += step) {
            double numeric = 0.0, analytic = 0.0;
            for (std::size_t i = level; i < level + step; ++i) {
                numeric += (up.crystalField.levels[i].energy - down.crystalField.levels[i].energy) / 0.5;
                analytic += derivatives.values(static_cast<Eigen::Index>(i), static_cast<Eigen::Index>(column));
            }
            EXPECT_NEAR(analytic, numeric, 1e-4 * (1 + std::abs(numeric))) << c.column << " level " << level;
        }
    }
}

TEST(EnergyLevels, ImpossibleSetsAreRefusedWithTheirMessage) {
    struct Case { std::function<void(ParameterSet&)> edit; const char* fragment; };
    const Case cases[] = {
        {[](ParameterSet& s) { s.electronCount = 15; }, "invalid number of f electrons: 15"},
        {[](ParameterSet& s) { s.crystalField[0] = bkq(2, 0, 10, 5); }, "B(k,0) is real"},
        {[](ParameterSet& s) { s.switches.minSpinMultiplicity = 9; }, "no |SLJ> state is left"},
    };
    for (const auto& c : cases) {
        auto set = praseodymium();
        c.edit(set);
        EXPECT_THROW(test::runLevels(set, {true, false, true}), UserError) << c.fragment;
    }
}

TEST(EnergyLevels, MinimumMultiplicityDropsDoubletTerms) {
    // f3 quartets: 4S, 4D, 4F, 4G, 4I -> J-states 1 + 4 + 4 + 4 + 4 = 17.
    const auto& tables = test::engineTables(3);
    const auto basis = buildJBasis(tables.terms, 3);
    EXPECT_EQ(basis.states.size(), 17u);
    for (const auto& state : basis.states) EXPECT_EQ(tables.terms[state.term].twiceS, 3);
}

}  // namespace
}  // namespace orvane
