// The least-squares cycle on levels of known parameters: Pr3+ (f^2) and Nd3+
// (f^3) in LaF3 with the parameters of Carnall, Goodman, Rajnak & Rana,
// J. Chem. Phys. 90, 3443 (1989), Table I, every parameter the paper fitted
// free. Levels computed here from those parameters are the observations; the
// fit starts from every free parameter off by 5-10 % and must return them.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "core/log_book.hpp"
#include "engine/parameter_file.hpp"
#include "fit/fit_parameters.hpp"
#include "fit/fit_session.hpp"
#include "tests/engine/engine_test_support.hpp"
#include "tests/support/published_ion.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

const char* const kCarnallFitted[] = {"F2", "F4", "F6", "ZETA", "ALPHA", "BETA", "GAMMA", "T2", "T3",  "T4",
                                      "T6", "T7", "T8", "M0",   "P2",    "B20",  "B22",   "B40", "B42", "B44",
                                      "B60", "B62", "B64", "B66"};

struct RecoveryCase {
    const char* file;
    int freeCount;
    bool withGFactors;  // gx and gz of the two lowest doublets fitted too
};

class Recovery : public ::testing::TestWithParam<RecoveryCase> {};

TEST_P(Recovery, ReturnsTheKnownParametersFromPerturbedStart) {
    const auto set = readParameterFile(test::sourceDirectory() / "examples" / GetParam().file);
    MemoryLogBook log;
    const auto model = std::make_shared<const Model>(
        Model::build(modelSetupOf(set, true, false), test::engineTableDirectory(), log));

    FitWorkspace truth;
    truth.parameters = fitParameterRows(set, FitKind::RealCrystalField);
    truth.settings.maxLevels = 0;
    truth.settings.fitGFactors = GetParam().withGFactors;
    if (GetParam().withGFactors)
        for (const int state : {1, 3})
            for (const auto component : {GComponent::X, GComponent::Z}) truth.gFactors.push_back({state, "", component});
    FitSession reference(set, truth, model);
    reference.update();
    for (std::size_t r = 0; r < truth.gFactors.size(); ++r)
        truth.gFactors[r].observed = reference.workspace().gFactors[r].calculated;
    const auto& energies = reference.evaluation().energies;
    const auto& levelOf = reference.evaluation().levelOfState;

    FitWorkspace workspace = truth;
    for (std::size_t s = 0; s < energies.size(); ++s)
        if (s == 0 || levelOf[s] != levelOf[s - 1])
            workspace.levels.push_back({static_cast<int>(s + 1), "", false, energies[s]});
    int freeCount = 0, i = 0;
    for (auto& row : workspace.parameters) {
        bool fitted = false;
        for (const char* name : kCarnallFitted) fitted = fitted || (row.name == name && row.initial != 0.0);
        if (!fitted) continue;
        row.option = kFitOptionFree;
        row.finalFit = row.initial * (1.0 + (i % 2 ? -1.0 : 1.0) * (0.05 + 0.005 * (i % 11)));
        ++i;
        ++freeCount;
    }
    EXPECT_EQ(freeCount, GetParam().freeCount);

    FitSession session(set, workspace, model);
    session.update();
    int cycles = 0;
    for (double change = 1.0; cycles < 20 && change > 1e-9; ++cycles) {
        const double before = session.workspace().rmsDeviation;
        change = std::abs(session.runCycle().rmsDeviation - before);
    }
    std::printf("%s: RMS Dev. %.2e after %d cycles\n", GetParam().file, session.workspace().rmsDeviation, cycles);
    EXPECT_LT(session.workspace().rmsDeviation, 0.01) << "after " << cycles << " cycles";
    EXPECT_LT(session.workspace().rmsDeviationG, 1e-6);
    for (std::size_t r = 0; r < truth.parameters.size(); ++r) {
        const auto& fitted = session.workspace().parameters[r];
        EXPECT_NEAR(fitted.finalFit, truth.parameters[r].initial, 1e-4 * std::abs(truth.parameters[r].initial))
            << fitted.name;
    }
}

INSTANTIATE_TEST_SUITE_P(CarnallLaF3, Recovery,
                         ::testing::Values(RecoveryCase{"Pr3plus-LaF3.par", 18, false},
                                           RecoveryCase{"Nd3plus-LaF3.par", 24, true}));

}  // namespace
}  // namespace orvane

namespace orvane {
namespace {

// The observed levels of Nd3+:LaF3 (Carnall et al. 1989, appendix), each
// assigned to the calculated state of the paper's own "Calc" rank (a Kramers
// doublet per level); the paper's free parameters and E_AVG (the zero of
// the observed energies) start 3 % off the paper's values.
TEST(PublishedFit, NeodymiumInLaF3ConvergesToThePapersDeviation) {
    ORVANE_REQUIRE_REFERENCE(reference);
    const auto ion = test::readPublishedIon(reference / "carnall-laf3" / "Nd3plus-LaF3.txt");
    const auto set = readParameterFile(test::sourceDirectory() / "examples" / "Nd3plus-LaF3.par");
    FitWorkspace workspace;
    workspace.parameters = fitParameterRows(set, FitKind::RealCrystalField);
    workspace.settings.maxLevels = 0;
    for (const auto& level : ion.levels) {
        if (!level.observed) continue;
        const auto rank = std::lower_bound(ion.calculated.begin(), ion.calculated.end(), level.calculated) -
                          ion.calculated.begin();
        workspace.levels.push_back({static_cast<int>(2 * rank + 1), level.multiplet, false, *level.observed});
        workspace.levels.back().withheld = !level.fitted;
    }
    for (auto& row : workspace.parameters) {
        const auto status = ion.status.find(row.name);
        if (row.name != "EAVG" && (status == ion.status.end() || status->second != "fitted")) continue;
        row.option = kFitOptionFree;
        row.finalFit = row.initial * 1.03;
    }
    MemoryLogBook log;
    FitSession session(set, workspace, test::engineTableDirectory(), log);
    session.update();
    double change = 1.0;
    int cycles = 0;
    for (; cycles < 30 && change > 1e-3; ++cycles) {
        const double before = session.workspace().rmsDeviation;
        change = std::abs(session.runCycle().rmsDeviation - before);
    }
    const double sigma = ion.parameters.at("rms_deviation");
    std::printf("Nd3+:LaF3, %zu observed levels, %d cycles: RMS Dev. %.2f, S.E. %.2f cm^-1 (paper: sigma %.0f)\n",
                session.workspace().levels.size(), cycles, session.workspace().rmsDeviation,
                session.workspace().standardError, sigma);
    EXPECT_LT(change, 1e-3);
    EXPECT_NEAR(session.workspace().standardError, sigma, 0.1 * sigma);
}

}  // namespace
}  // namespace orvane
