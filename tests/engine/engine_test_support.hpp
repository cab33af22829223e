#pragma once
// Helpers shared by the engine tests: one table directory for every test
// process, in-memory tables, parameter rows typed as numbers and the Pr3+
// free-ion set.
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "engine/configuration_tables.hpp"
#include "engine/parameter_set.hpp"
#include "tables/table_builder.hpp"
#include "tables/term_generator.hpp"

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

// In-memory tables of f^n, built once per configuration for the whole program.
inline const EngineTables& inMemoryTables(int n) {
    static const auto generated = generateConfigurations(7);
    static std::map<int, EngineTables> cache;
    auto found = cache.find(n);
    if (found == cache.end())
        found = cache.emplace(n, engineTablesFrom(computeConfigurationTables(n, generated))).first;
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

}  // namespace orvane::test
