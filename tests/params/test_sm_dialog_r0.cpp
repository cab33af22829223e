// The R0 = 0 question of the superposition model: Abort ends the calculation,
// Retry asks R0 again, Ignore goes on with R0 = 0.
#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "core/asker.hpp"
#include "core/user_error.hpp"
#include "params/sm_dialogs.hpp"
#include "params/superposition.hpp"

namespace orvane::params {
namespace {

const std::string kR0Message = "Error in setting up ligand positions: Reference ligand distance = 0!";

SuperpositionParameters zeroR0Parameters() {
    SuperpositionParameters p;
    p.r0 = 0.0;
    p.bk = {400.0, 300.0, 200.0};
    p.tk = {7.0, 10.0, 12.0};
    return p;
}

// One ligand at R = 2.5 on the z axis: only q = 0, B(k,0) = b_k (R0/R)^t_k K_k0 with
// K_k0(theta = 0) = 1 (Legendre P_k(1) = 1, Wybourne normalisation).
const std::vector<Ligand> kAxialLigand{{2.5, 0.0, 0.0}};

TEST(ReferenceDistanceDialog, EachAnswerOfAbortRetryIgnore) {
    struct Case {
        const char* name;
        std::vector<Choice> choices;
        std::vector<std::string> answers;
        bool goesOn;
        double r0;
        int dialogs;
        int questions;
    };
    const std::vector<Case> cases{
        {"Abort ends", {Choice::Abort}, {}, false, 0.0, 1, 0},
        {"closed dialog ends like Abort", {}, {}, false, 0.0, 1, 0},
        {"Ignore goes on with R0 = 0", {Choice::Ignore}, {}, true, 0.0, 1, 0},
        {"Retry then a new R0", {Choice::Retry}, {"2.5"}, true, 2.5, 1, 1},
        {"Retry, bad text, then a new R0", {Choice::Retry}, {"two", "-1", "2.5"}, true, 2.5, 1, 3},
        {"Retry with 0 asks again, then Abort", {Choice::Retry, Choice::Abort}, {"0"}, false, 0.0, 2, 1},
        {"Retry with 0, then Ignore", {Choice::Retry, Choice::Ignore}, {"0"}, true, 0.0, 2, 1},
        {"Retry, then the input is cancelled", {Choice::Retry}, {}, false, 0.0, 1, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ScriptedAsker asker(c.answers, c.choices);
        const auto result = confirmReferenceDistance(zeroR0Parameters(), asker);
        ASSERT_EQ(result.has_value(), c.goesOn);
        if (result) {
            EXPECT_EQ(result->r0, c.r0);
        }
        int dialogs = 0;
        for (const auto& m : asker.messages()) dialogs += m == kR0Message ? 1 : 0;
        EXPECT_EQ(dialogs, c.dialogs);
        EXPECT_EQ(static_cast<int>(asker.questions().size()), c.questions);
    }
}

TEST(ReferenceDistanceDialog, NonZeroR0IsNotQuestioned) {
    SuperpositionParameters p = zeroR0Parameters();
    p.r0 = 2.3;
    ScriptedAsker asker;
    const auto result = confirmReferenceDistance(p, asker);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->r0, 2.3);
    EXPECT_TRUE(asker.messages().empty());
}

TEST(ReferenceDistanceDialog, OutcomesFeedTheLigandSums) {
    // Without the dialog, R0 = 0 is refused with the same message.
    try {
        superpositionBkq(kAxialLigand, zeroR0Parameters());
        FAIL() << "R0 = 0 accepted without the dialog";
    } catch (const UserError& e) {
        EXPECT_STREQ(e.what(), "Reference ligand distance = 0!");
        EXPECT_EQ(e.title(), "Error in setting up ligand positions");
    }
    // Ignore: (0/R)^t_k = 0, so every Bkq vanishes.
    {
        ScriptedAsker asker({}, {Choice::Ignore});
        const auto p = confirmReferenceDistance(zeroR0Parameters(), asker);
        ASSERT_TRUE(p);
        const BkqArray b = superpositionBkq(kAxialLigand, *p);
        for (int k = 2; k <= 6; k += 2)
            for (int q = 0; q <= k; ++q) EXPECT_EQ(std::abs(b[k][q]), 0.0) << k << q;
    }
    // Retry with R0 = R: B(k,0) = b_k exactly.
    {
        ScriptedAsker asker({"2.5"}, {Choice::Retry});
        const auto p = confirmReferenceDistance(zeroR0Parameters(), asker);
        ASSERT_TRUE(p);
        const BkqArray b = superpositionBkq(kAxialLigand, *p);
        EXPECT_NEAR(b[2][0].real(), 400.0, 1e-9);
        EXPECT_NEAR(b[4][0].real(), 300.0, 1e-9);
        EXPECT_NEAR(b[6][0].real(), 200.0, 1e-9);
    }
}

TEST(AskerButtons, AbortRetryIgnoreFromTheTerminal) {
    std::istringstream in("x\nretry\n");
    std::ostringstream out;
    TerminalAsker asker(in, out);
    EXPECT_EQ(asker.askChoice("T", "Text", Buttons::AbortRetryIgnore), Choice::Retry);
    EXPECT_EQ(asker.askChoice("T", "Text", Buttons::AbortRetryIgnore), Choice::Abort);  // input ended
    EXPECT_NE(out.str().find("[a]bort/[r]etry/[i]gnore"), std::string::npos);
}

}  // namespace
}  // namespace orvane::params
