// The library entry point: derivatives of the energies by the parameters
// (against finite differences and Euler's relation E = sum_p p dE/dp of a
// Hamiltonian linear in its parameters) and the refused parameter sets.
#include "engine/energy_levels.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "core/log_book.hpp"
#include "core/user_error.hpp"
#include "engine/energy_levels_derivatives.hpp"
#include "tests/engine/engine_test_support.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

std::filesystem::path tableDirectory() { return test::engineTableDirectory(); }

using test::row;
using test::bkq;

// Pr3+:LaF3 (Carnall, Goodman, Rajnak & Rana 1989, Table I) without M^k, P^k; C2v Bkq.
ParameterSet praseodymium() {
    ParameterSet set;
    set.electronCount = 2;
    set.fold = 2;
    set.mainFreeIon = {row("EAVG", 10133.3), row("F2", 68878), row("F4", 50347), row("F6", 32901), row("ZETA", 751.7)};
    set.otherFreeIon = {row("ALPHA", 16.23), row("BETA", -566.6), row("GAMMA", 1371)};
    set.crystalField = {bkq(2, 0, -218), bkq(2, 2, -120), bkq(4, 0, 738),  bkq(4, 2, 431), bkq(4, 4, 616),
                        bkq(6, 0, 679),  bkq(6, 2, -921), bkq(6, 4, -348), bkq(6, 6, -788)};
    return set;
}

EnergyLevelResult run(const ParameterSet& set, bool complex = false) {
    MemoryLogBook log;
    return computeEnergyLevels(set, tableDirectory(), log, {true, true, complex});
}

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

TEST(EnergyLevelDerivatives, MatchCentralFiniteDifferences) {
    // Pr3+ in C2v has only singlets: every level has its own derivative.
    struct Case {
        const char* column;
        std::function<void(ParameterSet&, double)> shift;
        double step;
    };
    const Case cases[] = {
        {"ZETA", [](ParameterSet& s, double h) { s.mainFreeIon[4].cell.value += h; }, 1.0},
        {"BETA", [](ParameterSet& s, double h) { s.otherFreeIon[1] = row("BETA", -566.6 + h); }, 1.0},
        {"ReB(6,2)", [](ParameterSet& s, double h) { s.crystalField[6].re.value += h; }, 1.0},
    };
    const auto base = run(praseodymium());
    const auto derivatives = crystalFieldDerivatives(base);
    for (const auto& c : cases) {
        auto plus = praseodymium(), minus = praseodymium();
        c.shift(plus, c.step);
        c.shift(minus, -c.step);
        const auto up = run(plus), down = run(minus);
        const auto column = columnOf(derivatives, c.column);
        for (std::size_t level = 0; level < 40; ++level) {
            const double numeric =
                (up.crystalField.levels[level].energy - down.crystalField.levels[level].energy) / (2 * c.step);
            EXPECT_NEAR(derivatives.values(level, column), numeric, 1e-4 * (1 + std::abs(numeric)))
                << c.column << " level " << level;
        }
    }
}

TEST(EnergyLevelDerivatives, KramersPairsSummedMatchFiniteDifferences) {
    // f3 (Kramers doublets, complex B(2,1)): the derivative of a doublet is the sum over its two vectors.
    auto set = praseodymium();
    set.electronCount = 3;
    set.fold = 1;
    set.crystalField.push_back(bkq(2, 1, 140, -90));
    const auto base = run(set, true);
    const auto derivatives = crystalFieldDerivatives(base);
    const auto column = columnOf(derivatives, "ImB(2,1)");
    auto plus = set, minus = set;
    plus.crystalField.back().im.value += 1.0;
    minus.crystalField.back().im.value -= 1.0;
    const auto up = run(plus, true), down = run(minus, true);
    for (std::size_t level = 0; level < 40; level += 2) {
        const double numeric = (up.crystalField.levels[level].energy + up.crystalField.levels[level + 1].energy -
                                down.crystalField.levels[level].energy - down.crystalField.levels[level + 1].energy) /
                               2.0;
        EXPECT_NEAR(derivatives.values(level, column) + derivatives.values(level + 1, column), numeric,
                    1e-4 * (1 + std::abs(numeric)))
            << "doublet " << level / 2;
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
        MemoryLogBook log;
        EXPECT_THROW(computeEnergyLevels(set, tableDirectory(), log, {true, false, true}), UserError) << c.fragment;
    }
}

}  // namespace
}  // namespace orvane
