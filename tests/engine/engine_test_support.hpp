#pragma once
// Helpers shared by the engine tests: one table directory for every test
// process, in-memory tables, parameter rows typed as numbers, the Pr3+ and
// Nd3+ parameter sets, one engine run and the comparison of two spectra.
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "core/log_book.hpp"
#include "engine/configuration_tables.hpp"
#include "engine/energy_levels.hpp"
#include "engine/model.hpp"
#include "engine/parameter_set.hpp"

namespace orvane::test {

// One directory for every test process, never emptied: ctest may run tests of
// the engine program in parallel, and tables are written atomically and only
// when missing.
inline std::filesystem::path engineTableDirectory() {
    static const auto directory = [] {
        const auto path =
            std::filesystem::path(ORVANE_BINARY_DIR) / "test-scratch" / "engine-tables";
        std::filesystem::create_directories(path);
        return path;
    }();
    return directory;
}

inline FreeIonRow row(const std::string& name, double value) {
    return {name, {fmt::format("{}", value), value}};
}

inline CrystalFieldRow bkq(int k, int q, double re, double im = 0.0) {
    return {k, q, {fmt::format("{}", re), re}, {fmt::format("{}", im), im}};
}

// The tables of f^n read from the shared table directory (written there when
// missing), once per configuration for the whole program.
inline const EngineTables& engineTables(int n) {
    static std::map<int, EngineTables> cache;
    auto found = cache.find(n);
    if (found == cache.end()) {
        MemoryLogBook log;
        found = cache.emplace(n, loadEngineTables(n, engineTableDirectory(), log)).first;
    }
    return found->second;
}

// Pr3+:LaF3 free-ion parameters (Carnall, Goodman, Rajnak & Rana 1989, Table I) on f^n.
inline ParameterSet praseodymiumLikeSet(int n, double zeta, std::vector<CrystalFieldRow> crystalField, int fold) {
    ParameterSet set;
    set.electronCount = n;
    set.mainFreeIon = {row("EAVG", 0.0), row("F2", 68878), row("F4", 50347), row("F6", 32901), row("ZETA", zeta)};
    set.otherFreeIon = {row("ALPHA", 16.23), row("BETA", -566.6), row("GAMMA", 1371)};
    set.crystalField = std::move(crystalField);
    set.fold = fold;
    return set;
}

// Nd3+:LaF3 free-ion parameters (Carnall et al. 1989, Table I), T2' and spin-spin added, on f^n.
inline ParameterSet neodymiumLikeSet(int n) {
    ParameterSet set;
    set.electronCount = n;
    set.mainFreeIon = {row("EAVG", 24477.4), row("F2", 73018), row("F4", 52789), row("F6", 35757), row("ZETA", 885.3)};
    set.otherFreeIon = {row("ALPHA", 21.34), row("BETA", -593), row("GAMMA", 1445), row("T2", 298), row("T2'", 41),
                        row("T3", 35),       row("T4", 59),     row("T6", -285),   row("T7", 332), row("T8", 305),
                        row("M0", 2.11),     row("M2", 1.18),   row("M4", 0.80),   row("P2", 192), row("P4", 96),
                        row("P6", 19.2)};
    return set;
}

// Pr3+:LaF3 C2v B(k,q), Wybourne (Carnall et al. 1989, Table I).
inline std::vector<CrystalFieldRow> laf3CrystalField() {
    return {bkq(2, 0, -218), bkq(2, 2, -120), bkq(4, 0, 738),  bkq(4, 2, 431), bkq(4, 4, 616),
            bkq(6, 0, 679),  bkq(6, 2, -921), bkq(6, 4, -348), bkq(6, 6, -788)};
}

// A low-symmetry set with odd q (fold 1 only).
inline std::vector<CrystalFieldRow> lowSymmetryCrystalField() {
    return {bkq(2, 0, -300), bkq(2, 1, 150), bkq(2, 2, -120), bkq(4, 0, 700), bkq(4, 1, -210), bkq(4, 3, 330),
            bkq(4, 4, 500),  bkq(6, 0, 650), bkq(6, 2, -800), bkq(6, 3, 270), bkq(6, 5, -140), bkq(6, 6, -600)};
}

// A prepared model of the set from the shared test tables (the correlation
// operators too).
inline Model buildModel(const ParameterSet& set, bool crystalField, bool complex) {
    MemoryLogBook log;
    return Model::build(modelSetupOf(set, crystalField, complex), engineTableDirectory(), log);
}

inline EnergyLevelResult runLevels(const ParameterSet& set, EnergyLevelOptions options = {},
                                   const std::filesystem::path& directory = engineTableDirectory()) {
    MemoryLogBook log;
    return computeEnergyLevels(set, directory, log, options);
}

// The crystal-field energies (the free-ion ones when no crystal field was computed),
// ascending, optionally relative to the lowest.
inline std::vector<double> levelEnergies(const EnergyLevelResult& result, bool relative = false) {
    std::vector<double> energies;
    if (result.crystalField.levels.empty())
        for (const auto& level : result.freeIon.levels) energies.push_back(level.energy);
    for (const auto& level : result.crystalField.levels) energies.push_back(level.energy);
    const double zero = relative && !energies.empty() ? energies.front() : 0.0;
    for (double& e : energies) e -= zero;
    return energies;
}

// Largest |a_i - b_i|; the sizes must agree.
inline double largestDifference(const std::vector<double>& a, const std::vector<double>& b) {
    EXPECT_EQ(a.size(), b.size());
    double worst = 0.0;
    for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) worst = std::max(worst, std::abs(a[i] - b[i]));
    return worst;
}

}  // namespace orvane::test
