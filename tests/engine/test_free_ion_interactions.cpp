// Three-body, magnetic and correlated spin-orbit interactions of the free-ion
// stage: "/usezic", "/t2correction" and the per-level shares (the operators
// themselves: test_free_ion_determinants.cpp and test_equivalent_inputs.cpp).
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "core/atomic_file.hpp"
#include "core/user_error.hpp"
#include "engine/free_ion_contributions.hpp"
#include "tables/table_directory.hpp"
#include "tests/engine/engine_test_support.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

ParameterSet neodymiumLike(int n) { return test::neodymiumLikeSet(n); }


std::vector<double> freeIonEnergies(const ParameterSet& set, const std::filesystem::path& directory) {
    return test::levelEnergies(test::runLevels(set, {false}, directory));
}

TEST(FreeIonInteractions, UseZicReadsTheZFormMagneticFiles) {
    // Both file pairs hold the same elements: equal levels. A broken "rmzic.val" is then
    // reported only by the "/usezic" run, a broken "mesooci.val" only by the default run.
    // Many-body tables already in the per-user cache would be read from there: an empty cache.
    const char* oldCache = std::getenv("XDG_CACHE_HOME");
    const std::string savedCache = oldCache ? oldCache : "";
    ::setenv("XDG_CACHE_HOME", test::scratchDirectory("usezic-cache").c_str(), 1);
    const auto directory = test::scratchDirectory("usezic-tables");
    auto set = neodymiumLike(2);
    auto zic = set;
    zic.switches.useZic = true;
    EXPECT_LT(test::largestDifference(freeIonEnergies(set, directory), freeIonEnergies(zic, directory)), 1e-9);
    // A table from elsewhere (no generator seal) is read as it stands.
    const auto broken = directory / configurationFileName(2, "rmzic.val");
    auto text = readTextFile(broken);
    text.erase(text.find('['), text.find(']') - text.find('[') + 1);
    writeFileAtomically(broken, text + "1 2  x 0 0 0 0 0\n");
    EXPECT_NO_THROW(freeIonEnergies(set, directory));
    EXPECT_THROW(freeIonEnergies(zic, directory), UserError);  // a broken rmzic.val stops the /usezic run
    if (oldCache) ::setenv("XDG_CACHE_HOME", savedCache.c_str(), 1); else ::unsetenv("XDG_CACHE_HOME");
}

TEST(FreeIonInteractions, T2CorrectionMovesTheE3PartIntoTheSlaterParameters) {
    // Nd3+, T2 = 298: Delta E^3 = (3 - 2) 298 / (70 sqrt 2); the F^k take it, T2 is applied as 0
    // and T2' takes T2 (equal levels: tests/engine/test_equivalent_inputs.cpp).
    auto set = neodymiumLike(3);
    set.switches.t2Correction = true;
    const auto result = test::runLevels(set, {false});
    EXPECT_NEAR(result.freeIonWeights.at("F2"), 73018 + 225 * 11.0 / 42 * 298 / (70 * std::sqrt(2.0)), 1e-4);
    EXPECT_DOUBLE_EQ(result.freeIonWeights.at("T2"), 0.0);
    EXPECT_DOUBLE_EQ(result.freeIonWeights.at("T2'"), 298.0 + 41.0);
}

TEST(FreeIonContributions, SharesAddUpToEveryLevelEnergy) {
    struct Case {
        int n;
        bool noSpinSpin, t2Correction;
    };
    for (const Case& c : {Case{3, true, true}, Case{11, false, true}, Case{6, false, false}}) {
        auto set = neodymiumLike(c.n);
        set.switches.noSpinSpin = c.noSpinSpin;
        set.switches.t2Correction = c.t2Correction;
        const auto result = test::runLevels(set, {false});
        const auto shares = freeIonContributions(result.freeIonOperators, result.freeIonWeights, result.freeIon);
        ASSERT_EQ(shares.size(), result.freeIon.levels.size());
        double worst = 0.0, largestSpinSpin = 0.0, largestThreeBody = 0.0;
        for (std::size_t l = 0; l < shares.size(); ++l) {
            const auto& share = shares[l];
            ASSERT_EQ(share.shifts.size(), 13u);
            ASSERT_EQ(share.magneticElements.size(), 9u);
            ASSERT_EQ(share.magneticShifts.size(), 3u);
            double sum = share.averageEnergy;
            for (const auto& s : share.shifts) sum += s.value;
            for (const auto& s : share.magneticShifts) sum += s.value;
            worst = std::max(worst, std::abs(sum - result.freeIon.levels[l].energy));
            largestSpinSpin = std::max(largestSpinSpin, std::abs(share.magneticShifts[0].value));
            largestThreeBody = std::max(largestThreeBody, std::abs(share.shifts[8].value));
            // E(SS) = sum M^k <mss_k>, E(EL-SO) = sum P^k <p_k> (the elements of p_k are printed times 100).
            const auto& e = share.magneticElements;
            if (!c.noSpinSpin) {
                EXPECT_NEAR(share.magneticShifts[0].value, 2.11 * e[0].value + 1.18 * e[1].value + 0.80 * e[2].value, 1e-9);
            }
            EXPECT_NEAR(share.magneticShifts[2].value, (192 * e[6].value + 96 * e[7].value + 19.2 * e[8].value) / 100,
                        1e-9);
        }
        const std::string what = fmt::format("f{}{}{}", c.n, c.noSpinSpin ? " /noss" : "", c.t2Correction ? " /t2correction" : "");
        EXPECT_LT(worst, 1e-7) << what;
        if (c.noSpinSpin) EXPECT_EQ(largestSpinSpin, 0.0) << what;
        else EXPECT_GT(largestSpinSpin, 0.1) << what;
        EXPECT_GT(largestThreeBody, 1.0) << what << ": E(t3)";
    }
}

}  // namespace
}  // namespace orvane
