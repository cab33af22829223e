#pragma once
// Parameter sets and a run environment for the report tests.
#include <filesystem>
#include <string>

#include "core/log_book.hpp"
#include "core/settings_store.hpp"
#include "engine/parameter_file.hpp"
#include "report/run_driver.hpp"
#include "tests/engine/engine_test_support.hpp"

namespace orvane::test {

// Pr3+:LaF3, Carnall, Goodman, Rajnak & Rana, J. Chem. Phys. 90, 3443 (1989),
// Table I (no spin-spin: "/noss").
inline ParameterSet praseodymiumLaF3(bool crystalField = true) {
    ParameterSet set;
    set.title = "Pr3+:LaF3";
    set.slaterType = SlaterType::SlaterFUpper;
    set.mainFreeIon = {row("EAVG", 10000), row("F2", 68878), row("F4", 50347), row("F6", 32901),
                       row("ZETA", 751.7)};
    set.electronCount = 2;
    set.fold = 2;
    set.otherFreeIon = {row("ALPHA", 16.23), row("BETA", -566.6), row("GAMMA", 1371), row("M0", 2.08),
                        row("M2", 1.1648),   row("M4", 0.6448),    row("P2", -88.6),   row("P4", -44.3),
                        row("P6", -8.86)};
    if (crystalField)
        set.crystalField = {bkq(2, 0, -218), bkq(2, 2, -120), bkq(4, 0, 738),  bkq(4, 2, 431), bkq(4, 4, 616),
                            bkq(6, 0, 679),  bkq(6, 2, -921), bkq(6, 4, -348), bkq(6, 6, -788)};
    set.hasOptionLine = true;
    set.switches.noSpinSpin = true;
    return set;
}

// Ce3+ (f1) with spin-orbit only and an axial field B(2,0) (fold 1).
inline ParameterSet ceriumAxial(double b20, double b40 = 0.0) {
    ParameterSet set;
    set.title = "Ce3+ test";
    set.mainFreeIon = {row("EAVG", 0), row("F2", 0), row("F4", 0), row("F6", 0), row("ZETA", 625)};
    set.electronCount = 1;
    set.fold = 1;
    set.crystalField = {bkq(2, 0, b20)};
    if (b40 != 0.0) set.crystalField.push_back(bkq(4, 0, b40));
    return set;
}

inline std::filesystem::path writeSet(const std::filesystem::path& dir, const std::string& name,
                                      const ParameterSet& set) {
    const auto path = dir / name;
    writeParameterFile(path, set);
    return path;
}

// A run environment with a memory log and memory settings.
struct TestRun {
    MemoryLogBook log;
    MemorySettingsStore settings;
    RunEnvironment environment{log, settings, engineTableDirectory()};
};

}  // namespace orvane::test
