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

#include "core/user_error.hpp"
#include "engine/model.hpp"
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

// Euler's relation: the Hamiltonian is linear in its parameters, so
// E = sum_p p dE/dp for every level, free ion and crystal field, real and complex.
TEST(ModelDerivatives, EulerRelationForFreeIonAndCrystalFieldLevels) {
    for (const bool crystalField : {false, true})
        for (const bool complex : {false, true}) {
            if (complex && !crystalField) continue;
            auto set = praseodymium();
            if (complex) set.crystalField[1] = bkq(2, 2, -120, 75);
            const Model model = test::buildModel(set, crystalField, complex);
            const auto parameters = parameterVectorOf(set, complex);
            const auto ids = model.parameterIds();
            ModelWorkspace workspace;
            const auto solution = model.solve(parameters, {false, false, kAllEigenvalues, ids, {}}, workspace);
            const auto count = solution.derivatives.rows();
            for (Eigen::Index level = 0; level < count; ++level) {
                double sum = 0.0;
                for (std::size_t p = 0; p < ids.size(); ++p)
                    sum += parameters.value(ids[p]) * solution.derivatives(level, static_cast<Eigen::Index>(p));
                const double energy = crystalField ? solution.levels[level].energy
                                                   : solution.freeIon.levels[level].energy;
                EXPECT_NEAR(sum, energy, 1e-7 * (1 + std::abs(energy)))
                    << (crystalField ? (complex ? "complex" : "real") : "free ion") << " level " << level;
            }
        }
}

// dE/dp against central differences (step 0.25 cm^-1) for the lowest levels
// of the parameters the model-route tests do not reach (an imaginary part at
// q = 1, the correlation crystal fields); for odd n (Kramers doublets) the
// derivative of a doublet is the sum over its two states.
struct DifferenceCase {
    const char* name;
    ParameterId id;
    std::function<void(ParameterSet&)> prepare;
    std::function<double&(ParameterSet&)> value;
};

TEST(ModelDerivatives, MatchCentralFiniteDifferencesOfCorrelationAndImaginaryParts) {
    auto correlated = [](ParameterSet& s) {
        s.fold = 1;
        s.crystalField.push_back(bkq(2, 1, 90));
        s.correlationCF = {{CorrelationKind::Sccf, {bkq(2, 0, 120), bkq(4, 1, -90)}},
                           {CorrelationKind::Lccf, {bkq(6, 3, 12)}}};
        s.switches.correlationSections = true;
    };
    const DifferenceCase cases[] = {
        {"ImB(2,1)", crystalFieldParameterId(CrystalFieldOperator::Standard, 2, 1, true),
         [](ParameterSet& s) {
             s.electronCount = 1;
             s.fold = 1;
             s.crystalField.push_back(bkq(2, 1, 140, -90));
         },
         [](ParameterSet& s) -> double& { return s.crystalField.back().im.value; }},
        {"SCCF C(4,1)", crystalFieldParameterId(CrystalFieldOperator::Sccf, 4, 1, false), correlated,
         [](ParameterSet& s) -> double& { return s.correlationCF[0].rows[1].re.value; }},
        {"LCCF D(6,3)", crystalFieldParameterId(CrystalFieldOperator::Lccf, 6, 3, false), correlated,
         [](ParameterSet& s) -> double& { return s.correlationCF[1].rows[0].re.value; }},
    };
    for (const auto& c : cases) {
        auto set = praseodymium();
        c.prepare(set);
        const Model model = test::buildModel(set, true, true);
        ModelWorkspace workspace;
        const auto solution = model.solve(parameterVectorOf(set, true), {false, false, kAllEigenvalues, {c.id}, {}}, workspace);
        auto plus = set, minus = set;
        c.value(plus) += 0.25;
        c.value(minus) -= 0.25;
        const auto up = model.solve(parameterVectorOf(plus, true), {}, workspace).levels;
        const auto down = model.solve(parameterVectorOf(minus, true), {}, workspace).levels;
        const std::size_t step = set.electronCount % 2 == 1 ? 2 : 1;
        for (std::size_t level = 0; level < std::min<std::size_t>(20, up.size()); level += step) {
            double numeric = 0.0, analytic = 0.0;
            for (std::size_t i = level; i < level + step; ++i) {
                numeric += (up[i].energy - down[i].energy) / 0.5;
                analytic += solution.derivatives(static_cast<Eigen::Index>(i), 0);
            }
            EXPECT_NEAR(analytic, numeric, 1e-4 * (1 + std::abs(numeric))) << c.name << " level " << level;
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
