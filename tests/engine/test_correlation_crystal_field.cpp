// The correlation crystal fields in the engine: one-electron closed forms,
// the sign rule of the conjugate route, the tables of
// the orthogonal correlation crystal field and the derivatives by the
// correlation parameters.
#include "engine/correlation_crystal_field.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "core/angular.hpp"
#include "core/atomic_file.hpp"
#include "core/log_book.hpp"
#include "core/user_error.hpp"
#include "engine/energy_levels.hpp"
#include "engine/energy_levels_derivatives.hpp"
#include "engine/parameter_file.hpp"
#include "tables/table_directory.hpp"
#include "tests/engine/engine_test_support.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

using test::bkq;
using test::row;

// Pr3+:LaF3 free-ion parameters (Carnall et al. 1989, Table I) with zeta = 751.7.
ParameterSet ionSet(int n, std::vector<CrystalFieldRow> crystalField, int fold) {
    return test::praseodymiumLikeSet(n, 751.7, std::move(crystalField), fold);
}

void addSection(ParameterSet& set, CorrelationKind kind, std::vector<CrystalFieldRow> rows) {
    set.correlationCF.push_back({kind, std::move(rows)});
    set.switches.correlationSections = true;
}

EnergyLevelResult run(const ParameterSet& set, bool complex = false, bool vectors = false,
                      const std::filesystem::path& directory = test::engineTableDirectory()) {
    MemoryLogBook log;
    return computeEnergyLevels(set, directory, log, {true, vectors, complex});
}

double largestDifference(const EnergyLevelResult& a, const EnergyLevelResult& b, bool relative) {
    const auto& x = a.crystalField.levels;
    const auto& y = b.crystalField.levels;
    EXPECT_EQ(x.size(), y.size());
    double worst = 0.0;
    for (std::size_t i = 0; i < std::min(x.size(), y.size()); ++i) {
        const double dx = relative ? x[i].energy - x[0].energy : x[i].energy;
        const double dy = relative ? y[i].energy - y[0].energy : y[i].energy;
        worst = std::max(worst, std::abs(dx - dy));
    }
    return worst;
}

double unitFactor(int k) { return ReducedCk2(6, 2 * k, 6); }  // <f||C(k)||f>

TEST(CorrelationCrystalField, OneElectronClosedForms) {
    // f1: sum_i 2 (s_i.S) u(k) = 2 s.s u(k) = 3/2 u(k); (1/2){L.l, u(k)} = l(l+1) u(k) = 12 u(k).
    // So c(k,q) and d(k,q) act as B(k,q) = (3/2) c / c_k and 12 d / c_k.
    struct Case { CorrelationKind kind; double factor; const char* name; };
    for (const Case& c : {Case{CorrelationKind::Sccf, 1.5, "SCCF"}, Case{CorrelationKind::Lccf, 12.0, "LCCF"}}) {
        const std::vector<CrystalFieldRow> rows = {bkq(2, 0, 140), bkq(4, 2, -60, 25), bkq(6, 6, 80, -30)};
        auto correlated = ionSet(1, {}, 2);
        addSection(correlated, c.kind, rows);
        std::vector<CrystalFieldRow> equivalent;
        for (const auto& r : rows)
            equivalent.push_back(bkq(r.k, r.q, c.factor * r.re.value / unitFactor(r.k),
                                     c.factor * r.im.value / unitFactor(r.k)));
        const auto a = run(correlated, true);
        const auto b = run(ionSet(1, equivalent, 2), true);
        EXPECT_LT(largestDifference(a, b, false), 1e-9) << c.name;
        EXPECT_GT(a.crystalField.levels.back().energy - a.crystalField.levels.front().energy, 2000.0) << c.name;
    }
}

TEST(CorrelationCrystalField, ConjugateRouteKeepsTheSignsOfTheCorrelationParameters) {
    // f11 and f13 through f3 and f1 against their actual shells: c(k,q) and d(k,q) keep their
    // signs (V(1k), k even, is the same for f^n and f^(14-n); the L-correlated tables are
    // those of the actual shell). Negating them on the conjugate route must visibly fail.
    for (int n : {11, 13}) {
        auto set = ionSet(n, {bkq(2, 0, -300), bkq(4, 4, 500), bkq(6, 2, -400)}, 2);
        addSection(set, CorrelationKind::Sccf, {bkq(2, 0, 120), bkq(4, 2, -90), bkq(6, 6, 70)});
        addSection(set, CorrelationKind::Lccf, {bkq(2, 2, 14), bkq(4, 0, -10), bkq(6, 4, 9)});
        const auto conjugate = run(set);
        auto actualSet = set;
        actualSet.switches.actualShell = true;
        const auto actual = run(actualSet);
        ASSERT_TRUE(conjugate.conjugate);
        EXPECT_LT(largestDifference(conjugate, actual, true), 1e-6) << "f" << n;
        auto flipped = set;
        for (auto& section : flipped.correlationCF)
            for (auto& r : section.rows) r.re.value = -r.re.value;
        EXPECT_GT(largestDifference(run(flipped), actual, true), 1.0) << "f" << n << " with negated c, d";
    }
}

TEST(CorrelationCrystalField, OrthogonalCorrelationTablesAreReadWhenPresent) {
    // No g(2)10A table: refused. A table g(4)10B.val holding the
    // U(4) elements makes g(4,q) act as B(4,q) = g / c_4.
    const auto directory = test::scratchDirectory("engine_occf_tables");
    auto missing = ionSet(2, {}, 1);
    addSection(missing, CorrelationKind::OccfA, {bkq(2, 0, 100)});
    EXPECT_THROW(run(missing, false, false, directory), UserError);
    run(ionSet(2, {}, 1), false, false, directory);  // makes the f2 tables there
    const auto unitTable = findCaseBlind(directory, "f2rmu4.val");
    ASSERT_TRUE(unitTable.has_value());
    writeFileAtomically(directory / "f2g(4)10B.val", readTextFile(*unitTable));
    auto present = ionSet(2, {}, 2);
    addSection(present, CorrelationKind::OccfB, {bkq(4, 0, 300), bkq(4, 2, -150)});
    const auto a = run(present, false, false, directory);
    const auto b = run(ionSet(2, {bkq(4, 0, 300 / unitFactor(4)), bkq(4, 2, -150 / unitFactor(4))}, 2), false,
                       false, directory);
    EXPECT_LT(largestDifference(a, b, false), 1e-9);
}

TEST(CorrelationCrystalField, DerivativesByCorrelationParametersMatchFiniteDifferences) {
    // dE/dc and dE/dd from the stored components against central differences (step 0.5 cm^-1)
    // for the ten lowest levels of f2 (non-degenerate in this low-symmetry field).
    auto set = ionSet(2, {bkq(2, 0, -218), bkq(2, 1, 90), bkq(4, 3, 331), bkq(6, 5, -140)}, 1);
    addSection(set, CorrelationKind::Sccf, {bkq(2, 0, 120), bkq(4, 1, -90)});
    addSection(set, CorrelationKind::Lccf, {bkq(6, 3, 12)});
    const auto result = run(set, false, true);
    const auto derivatives = crystalFieldDerivatives(result);
    struct Case { const char* name; std::size_t section; std::size_t row; };
    for (const Case& c : {Case{"ReSCCF C(4,1)", 0, 1}, Case{"ReLCCF D(6,3)", 1, 0}}) {
        std::size_t column = derivatives.parameters.size();
        for (std::size_t i = 0; i < derivatives.parameters.size(); ++i)
            if (derivatives.parameters[i] == c.name) column = i;
        ASSERT_LT(column, derivatives.parameters.size()) << c.name;
        auto plus = set, minus = set;
        plus.correlationCF[c.section].rows[c.row].re.value += 0.5;
        minus.correlationCF[c.section].rows[c.row].re.value -= 0.5;
        const auto up = run(plus), down = run(minus);
        for (std::size_t level = 0; level < 10; ++level) {
            const double difference = (up.crystalField.levels[level].energy - down.crystalField.levels[level].energy) / 1.0;
            EXPECT_NEAR(derivatives.values(level, column), difference, 1e-4) << c.name << " level " << level;
        }
    }
}

}  // namespace
}  // namespace orvane
