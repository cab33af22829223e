// The Ultimate Fit's decision on RMS histories and the initialisation checks
// before a cycle, each on hand-made cases.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "fit/fit_checks.hpp"
#include "fit/fit_settings.hpp"
#include "fit/ultimate_fit.hpp"

namespace orvane {
namespace {

TEST(UltimateFit, DecidesFromTheHistory) {
    struct Case {
        const char* what;
        std::vector<double> history;
        int maxIterations;
        UltimateFitStatus status;
        bool limitReached;
    };
    const Case cases[] = {
        {"settled", {50, 20, 12, 11.995}, 0, UltimateFitStatus::Success, false},
        {"one cycle only", {50}, 0, UltimateFitStatus::Running, false},
        {"still falling", {50, 40, 30}, 10, UltimateFitStatus::Running, false},
        {"two rises above 10 %", {10, 11.2, 12.4}, 0, UltimateFitStatus::Diverging, false},
        // Not diverging; but two rises in the second half make it oscillating.
        {"two rises of exactly 10 %", {100, 110, 121}, 0, UltimateFitStatus::Oscillating, false},
        {"one rise, then a fall", {10, 12, 11}, 0, UltimateFitStatus::Running, false},
        // k from 6/2 = 3 to 6: rises at k = 3 and 5 (R(2)->R(3), R(4)->R(5)).
        {"up and down", {20, 10, 12, 10, 12, 11.5}, 0, UltimateFitStatus::Oscillating, false},
        // The rise R(1)->R(2) lies in the first half (k starts at 6/2 = 3): not counted.
        {"early rise ignored", {10, 12, 11, 10.5, 11.4, 11.2}, 0, UltimateFitStatus::Running, false},
        {"limit reached while falling", {50, 40, 30, 25}, 3, UltimateFitStatus::ConvergingSlowly, true},
        {"limit reached while diverging", {10, 11.2, 12.4}, 2, UltimateFitStatus::Diverging, true},
    };
    for (const auto& c : cases) {
        const auto decision = ultimateFitDecision(c.history, [] { return 0.01; }, c.maxIterations);
        EXPECT_EQ(decision.status, c.status) << c.what;
        EXPECT_EQ(decision.iterationLimitReached, c.limitReached) << c.what;
    }
}

TEST(UltimateFit, ColoursLevelsByIssuesOverTheLastThreeFits) {
    std::vector<ObservedLevel> levels(4);
    for (int i = 0; i < 4; ++i) levels[static_cast<std::size_t>(i)].stateNumber = i + 1;
    levels[3].withheld = true;
    // Level 0 never deviates; level 1 once by more than the reference 20;
    // level 2 twice by more than 3 x RMS; the withheld level stays plain.
    const std::vector<FitSnapshot> fits = {{{1, 25, 10, 99}, 3}, {{1, 2, 10, 99}, 3}, {{1, 2, 2, 99}, 3}};
    const auto colours = diagnosisColours(levels, fits, 20.0);
    const std::vector<LabelColour> expected = {LabelColour::None, LabelColour::LightBlue, LabelColour::Red,
                                               LabelColour::None};
    EXPECT_EQ(colours, expected);
}

FitParameter parameterRow(const char* name, ParameterId id, std::int16_t option, const char* linkedTo = "") {
    FitParameter row;
    row.name = name;
    row.id = id;
    row.option = option;
    row.linkedTo = linkedTo;
    row.initial = row.finalFit = 100.0;
    return row;
}

TEST(FitChecks, RefuseOrWarnBeforeACycle) {
    using namespace parameter;
    const auto b40 = crystalFieldParameterId(CrystalFieldOperator::Standard, 4, 0, false);
    struct Case {
        const char* what;
        std::vector<FitParameter> rows;
        std::vector<ObservedLevel> levels;
        FitCheckContext context;
        std::vector<std::string> messages;
        bool refused, warned, askComplex;
    };
    auto levels = [](std::vector<std::pair<const char*, double>> list, bool lastWithheld = false) {
        std::vector<ObservedLevel> out;
        for (const auto& [label, energy] : list) out.push_back({1, label, false, energy});
        if (lastWithheld) out.back().withheld = true;
        return out;
    };
    const auto twoLevels = levels({{"3H4", 0}, {"3H5", 2100}});
    const Case cases[] = {
        {"nothing free", {parameterRow("F2", kF2, 0)}, twoLevels, {}, {"No parameter selected for fitting!"}, true,
         false, false},
        {"unknown option", {parameterRow("F2", kF2, 1), parameterRow("F4", kF4, 2)}, twoLevels, {},
         {"Unknown Option = 2 for F4"}, true, false, false},
        {"linked to itself", {parameterRow("F2", kF2, 1), parameterRow("F4", kF4, -1, "F4")}, twoLevels, {},
         {"Cannot linkF4to itself"}, true, false, false},
        {"superposition without the rank-4 intrinsic parameter", {parameterRow("B40", b40, 1)}, twoLevels, {true, false},
         {"Insufficient no. of rank 4 CFP set for Superposition Model fit!",
          " >>You may link some rank 4 CFP to the corresponding Superposition Model parameters with Option=-1"},
         true, false, false},
        {"as many free parameters as levels", {parameterRow("EAVG", kEavg, 1), parameterRow("B40", b40, 1)}, twoLevels,
         {}, {}, false, false, false},
        {"one more free parameter than levels (a withheld level does not count)",
         {parameterRow("EAVG", kEavg, 1), parameterRow("B40", b40, 1)},
         levels({{"3H4", 0}, {"3H5", 2100}}, true), {},
         {"Just 1 observed energies are not good enough to fit for 2 free parameters!"}, false, true, false},
        {"terms and multiplets",
         {parameterRow("F2", kF2, 1), parameterRow("F4", kF4, 1), parameterRow("ZETA", kZeta, 1),
          parameterRow("M0", kM0, 1), parameterRow("M2", kM2, 1), parameterRow("P2", kP2, 1)},
         levels({{"3H4", 0}, {"3H4", 50}, {"3H5", 2100}, {"3H5", 2150}, {"3H6", 4300}, {"3H6", 4350}}), {},
         {"1 different observed terms are not good enough to fit for 2 electrostatic interaction (including 2 and "
          "3-particle configuration interaction) parameters!",
          "3 different observed J-multiplets are not good enough to fit for 4 intra-atomic magnetic interaction "
          "parameters!"},
         false, true, false},
        {"real fit of a complex set", {parameterRow("B40", b40, 1)}, twoLevels, {false, true}, {}, false, false, true},
    };
    for (const auto& c : cases) {
        FitWorkspace workspace;
        workspace.parameters = c.rows;
        workspace.levels = c.levels;
        const auto outcome = checkFitSetup(workspace, c.context);
        EXPECT_EQ(outcome.refused, c.refused) << c.what;
        EXPECT_EQ(outcome.countWarnings, c.warned) << c.what;
        EXPECT_EQ(outcome.askRealFitOfComplexSet, c.askComplex) << c.what;
        for (const auto& message : c.messages)
            EXPECT_NE(std::find(outcome.messages.begin(), outcome.messages.end(), message), outcome.messages.end())
                << c.what << ": " << message;
        if (c.messages.empty()) {
            EXPECT_TRUE(outcome.messages.empty()) << c.what;
        }
    }
}

}  // namespace
}  // namespace orvane

namespace orvane {
namespace {

// Each setting's accepted range: an answer outside it is refused with
// "Invalid input" and leaves the settings as they were.
TEST(FitSettingsPrompts, AcceptOrRefuseAnswers) {
    const struct {
        FitSettingId id;
        const char* answer;
        bool accepted;
    } cases[] = {
        {FitSettingId::MaxIterations, "0", true},      {FitSettingId::MaxIterations, "-1", false},
        {FitSettingId::MaxIterations, "2.5", false},   {FitSettingId::ScalingFactor, "0.3", true},
        {FitSettingId::ScalingFactor, "0", false},     {FitSettingId::ScalingFactor, "nan", false},
        {FitSettingId::GWeight, "0", true},            {FitSettingId::GWeight, "-0.1", false},
        {FitSettingId::MaxLevels, "0", true},          {FitSettingId::MaxLevels, "abc", false},
        {FitSettingId::ConvergenceLimit, "0", false},  {FitSettingId::NearMatchPercent, "100", true},
        {FitSettingId::NearMatchPercent, "101", false}, {FitSettingId::MinorStateRatio, "1", true},
        {FitSettingId::MinorStateRatio, "0", false},   {FitSettingId::LabelWeights, "100 50 10", true},
        {FitSettingId::LabelWeights, "100 50", false}, {FitSettingId::PropertyAccuracy, "4", true},
        {FitSettingId::PropertyAccuracy, "1E-5", true}, {FitSettingId::PropertyAccuracy, "2.5", false},
    };
    for (const auto& c : cases) {
        FitSettings settings;
        const FitSettings before = settings;
        const auto refusal = applyFitSetting(settings, c.id, c.answer);
        EXPECT_EQ(!refusal.has_value(), c.accepted) << fitSettingPrompt(c.id).prompt << " " << c.answer;
        if (refusal) {
            EXPECT_EQ(*refusal, "Invalid input");
            EXPECT_EQ(fitSettingText(settings, c.id), fitSettingText(before, c.id));
        }
    }
    FitSettings settings;
    ASSERT_FALSE(applyFitSetting(settings, FitSettingId::MaxIterations, "0"));
    EXPECT_EQ(fitSettingText(settings, FitSettingId::MaxIterations), "Infinity");
    ASSERT_FALSE(applyFitSetting(settings, FitSettingId::PropertyAccuracy, "4"));
    EXPECT_DOUBLE_EQ(settings.propertyAccuracy, 1e-4);
    EXPECT_TRUE(dropsShownLevels(100, 150));
    EXPECT_FALSE(dropsShownLevels(0, 150));
}

}  // namespace
}  // namespace orvane
