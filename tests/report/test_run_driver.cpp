// The run and its result files: whole reports of the Pr3+:LaF3 example against
// golden files, modes and result names, discarded ("nul:") outputs, failures
// that leave every result file as it was, and the error categories.
//
// Golden files: tests/report/golden/. After an intended change of the report,
// refresh them with
//   ORVANE_UPDATE_GOLDEN=1 ./build/tests/test_report --gtest_filter='GoldenReport*'
// and review the difference with git diff.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "core/atomic_file.hpp"
#include "core/user_error.hpp"
#include "report/energy_file.hpp"
#include "report/level_summary.hpp"
#include "report/run_driver.hpp"
#include "tests/report/run_support.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

using test::TestRun;

std::vector<std::string> filesIn(const std::filesystem::path& dir) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(dir)) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

void replaceAll(std::string& text, const std::string& from, const std::string& to) {
    if (from.empty()) return;
    for (auto pos = text.find(from); pos != std::string::npos; pos = text.find(from, pos + to.size()))
        text.replace(pos, from.size(), to);
}

// The report with its time-stamped lines masked and the run's folders named
// <run> and <tables>.
std::string masked(std::string text, const std::filesystem::path& runDir) {
    replaceAll(text, test::engineTableDirectory().string(), "<tables>");
    replaceAll(text, runDir.string(), "<run>");
    std::string kept;
    std::istringstream in(text);
    std::string line;
    while (std::getline(in, line)) {
        if (line.rfind("*** Starting time: ", 0) == 0) line = "*** Starting time: <masked>";
        if (line.rfind("***** Work Completed on ", 0) == 0) line = "***** Work Completed on <masked>";
        kept += line + "\n";
    }
    return kept;
}

const std::filesystem::path kGoldenDir = std::filesystem::path(ORVANE_SOURCE_DIR) / "tests" / "report" / "golden";

TEST(GoldenReport, PraseodymiumExampleInModes0And2) {
    const bool update = std::getenv("ORVANE_UPDATE_GOLDEN") != nullptr;
    const auto example = std::filesystem::path(ORVANE_SOURCE_DIR) / "examples" / "Pr3plus-LaF3.par";
    {  // the tables of f2 are generated before, so that no report logs their generation
        const auto warmUp = test::scratchDirectory("golden_tables");
        std::filesystem::copy_file(example, warmUp / "Pr3plus-LaF3.par");
        TestRun run;
        runEngine(2, warmUp / "Pr3plus-LaF3.par", {}, run.environment);
    }
    for (const int mode : {0, 2}) {
        SCOPED_TRACE(mode);
        const auto dir = test::scratchDirectory("golden_mode" + std::to_string(mode));
        std::filesystem::copy_file(example, dir / "Pr3plus-LaF3.par");
        TestRun run;
        const auto outcome = runEngine(mode, dir / "Pr3plus-LaF3.par", {}, run.environment);
        std::string summary;  // the table the command ends with
        for (const auto& line : levelSummaryLines(outcome, 6)) summary += line + "\n";
        writeFileAtomically(dir / "summary.txt", summary);
        const std::string stem = mode == 0 ? "Pr3plus-LaF3" : "Pr3plus-LaF3_fi";
        for (const char* suffix : {".gen", ".eng", ".ev", ".summary"}) {
            const auto source = std::string(suffix) == ".summary" ? dir / "summary.txt" : dir / (stem + suffix);
            const auto produced = masked(readTextFile(source), dir);
            const auto golden = kGoldenDir / (stem + suffix);
            if (update) writeFileAtomically(golden, produced);
            ASSERT_TRUE(std::filesystem::exists(golden)) << golden << " is missing; see the top of this file";
            EXPECT_EQ(produced, readTextFile(golden)) << stem << suffix << " differs from its golden file";
        }
    }
}

TEST(RunModes, LastDigitChoosesTheKindAndNames) {
    struct Case {
        int mode;
        RunKind kind;
        const char* general;
        const char* energies;
    };
    const Case cases[] = {
        {0, RunKind::RealCrystalField, "dir/Er.gen", "dir/Er.eng"},
        {1, RunKind::ComplexCrystalField, "dir/Er.gen", "dir/Er.eng"},
        {2, RunKind::FreeIon, "dir/Er_fi.gen", "dir/Er_fi.eng"},
        {12, RunKind::FreeIon, "dir/Er_fi.gen", "dir/Er_fi.eng"},
        {5, RunKind::FreeIonKeepEnergies, "dir/Er_fi.gen", "dir/Er_fi.eng"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.mode);
        EXPECT_EQ(runKindOfMode(c.mode), c.kind);
        const auto names = resultNamesFor("dir/Er.par", c.kind, true, 0);
        EXPECT_EQ(names.general, c.general);
        EXPECT_EQ(names.energies, c.energies);
    }
    for (int invalid : {3, 4, 6, 7, 8, 9, 13}) EXPECT_THROW(runKindOfMode(invalid), UserError) << invalid;
    EXPECT_EQ(resultNamesFor("Er.PAR", RunKind::RealCrystalField, true, 0).vectors, "Er.ev");
    // The energy file is discarded in mode 0 from the tenth run without keep-energies, in mode 2 always.
    EXPECT_NE(resultNamesFor("a.par", RunKind::RealCrystalField, false, 9).energies, kNullOutput);
    EXPECT_EQ(resultNamesFor("a.par", RunKind::RealCrystalField, false, 10).energies, kNullOutput);
    EXPECT_EQ(resultNamesFor("a.par", RunKind::FreeIon, false, 0).energies, kNullOutput);
    EXPECT_NE(resultNamesFor("a.par", RunKind::FreeIonKeepEnergies, false, 99).energies, kNullOutput);
}

TEST(RunDriver, NullEnergyOutputWritesNoEnergyFileAndChangesNothingElse) {
    const auto kept = test::scratchDirectory("run_keep");
    const auto dropped = test::scratchDirectory("run_drop");
    const auto set = test::praseodymiumLaF3();
    TestRun keep, drop;
    drop.settings.write(kSettingsSection, kKeepEnergiesKey, "0");
    runEngine(2, test::writeSet(kept, "Pr.par", set), {}, keep.environment);
    const auto outcome = runEngine(2, test::writeSet(dropped, "Pr.par", set), {}, drop.environment);
    EXPECT_EQ(outcome.names.energies, "nul:");
    EXPECT_EQ(filesIn(dropped), (std::vector<std::string>{"Pr.par", "Pr_fi.ev", "Pr_fi.gen"}));
    EXPECT_EQ(readTextFile(kept / "Pr_fi.ev"), readTextFile(dropped / "Pr_fi.ev"));
    // The general outputs differ only in the echoed energy-file name.
    auto keptText = masked(readTextFile(kept / "Pr_fi.gen"), kept);
    replaceAll(keptText, "<run>/Pr_fi.eng", "nul:");
    EXPECT_EQ(keptText, masked(readTextFile(dropped / "Pr_fi.gen"), dropped));
}

TEST(RunDriver, FailedRunLeavesEveryResultFileAsItWas) {
    const auto dir = test::scratchDirectory("run_failure");
    auto set = test::praseodymiumLaF3();
    set.crystalField.push_back(test::bkq(2, 1, 50));  // q = 1 couples the blocks of the fold 2
    const auto file = test::writeSet(dir, "Pr.par", set);
    writeFileAtomically(dir / "Pr.gen", "old general output\n");
    TestRun run;
    try {
        runEngine(0, file, {}, run.environment);
        FAIL() << "the run should fail";
    } catch (const UserError& error) {
        EXPECT_EQ(error.category(), ErrorCategory::CrystalFieldHamiltonian);
    }
    EXPECT_EQ(readTextFile(dir / "Pr.gen"), "old general output\n");
    EXPECT_EQ(filesIn(dir), (std::vector<std::string>{"Pr.gen", "Pr.par"}));
}

TEST(RunDriver, BadInputsAreErrorsInMain) {
    const auto dir = test::scratchDirectory("run_bad_input");
    std::ofstream(dir / "bad.par") << "\"Input parameters for Orvane - Spectroscopic Analysis Package (version #2)\"\n"
                                   << "\"x\"\n\"y\"\nElectrostatic ineraction parameters  type = 7\n";
    RunRequest badComponent;
    badComponent.minComponent = "1";
    const auto good = test::writeSet(dir, "Pr.par", test::praseodymiumLaF3());
    const std::pair<std::filesystem::path, RunRequest> cases[] = {
        {dir / "bad.par", {}}, {good, badComponent}, {"", {}}};
    for (const auto& [file, request] : cases) {
        TestRun run;
        try {
            runEngine(0, file, request, run.environment);
            ADD_FAILURE() << file << " accepted";
        } catch (const UserError& error) {
            EXPECT_EQ(error.category(), ErrorCategory::Main) << file << ": " << error.what();
        }
    }
    EXPECT_EQ(filesIn(dir), (std::vector<std::string>{"Pr.par", "bad.par"}));
}

TEST(RunDriver, MissingTablesAreOfferedToTheEnvironment) {
    const auto dir = test::scratchDirectory("run_tables");
    const auto file = test::writeSet(dir, "Pr.par", test::praseodymiumLaF3(false));
    // Neither the table "directory" (a plain file) nor the cache can be written.
    std::ofstream(dir / "not-a-directory") << "x\n";
    const char* oldCache = std::getenv("XDG_CACHE_HOME");
    const std::string savedCache = oldCache ? oldCache : "";
    ::setenv("XDG_CACHE_HOME", (dir / "not-a-directory").c_str(), 1);
    std::vector<ErrorCategory> offered;
    TestRun run;
    run.environment.tableDirectory = dir / "not-a-directory" / "rme";
    run.environment.tablesMissing = [&](const UserError& error) -> std::optional<std::filesystem::path> {
        offered.push_back(error.category());
        return test::engineTableDirectory();
    };
    const auto outcome = runEngine(2, file, {}, run.environment);
    TestRun refused;  // no fallback: the engine's error
    refused.environment.tableDirectory = dir / "not-a-directory" / "rme";
    try {
        runEngine(2, file, {}, refused.environment);
        ADD_FAILURE() << "no tables and no fallback must fail";
    } catch (const UserError& error) {
        EXPECT_EQ(error.category(), ErrorCategory::RealEngine);
    }
    if (oldCache) ::setenv("XDG_CACHE_HOME", savedCache.c_str(), 1); else ::unsetenv("XDG_CACHE_HOME");
    EXPECT_EQ(offered, std::vector<ErrorCategory>{ErrorCategory::Tables});
    EXPECT_EQ(outcome.levels.size(), 13u);
}

}  // namespace
}  // namespace orvane
