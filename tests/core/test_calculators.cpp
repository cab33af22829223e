// The interactive calculators driven by scripted answers: questions, titles,
// retry questions, the lines written to the log book and the end of a session.
#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "core/calculators.hpp"
#include "core/number_format.hpp"

namespace {

using namespace orvane;

const std::string kHint = " (separated by a space or a comma or  a blank entry to terminate):";

std::vector<std::string> prompts(const ScriptedAsker& asker) {
    std::vector<std::string> texts;
    for (const auto& q : asker.questions()) texts.push_back(q.prompt);
    return texts;
}

std::vector<std::string> titles(const ScriptedAsker& asker) {
    std::vector<std::string> texts;
    for (const auto& q : asker.questions()) texts.push_back(q.title);
    return texts;
}

TEST(SymbolCalculators, ThreeJReadsBlanksCommasAndSemicolonsAndRetries) {
    ScriptedAsker asker({"1 1 0 1 -1 0", "1,1;0, 1 -1 0", "1 1 x 1 -1 0", "1 1 0", "1  1 0 1 -1 0.011", ""});
    MemoryLogBook log;
    runThreeJCalculator(asker, log);
    const std::string first = "Give values of j1, j2, j3, m1, m2, m3" + kHint;
    const std::string retry = "Please give a correct of values" + kHint;
    EXPECT_EQ(prompts(asker), (std::vector<std::string>{first, first, first, retry, retry, first}));
    // (1 1 0; 1 -1 0) = 1/sqrt(3) = .577350269189626 in the general number form; m3 = 0.011 breaks the projection rule.
    EXPECT_EQ(log.lines(), (std::vector<std::string>{"3j(1 1 0 / 1 -1 0) =  .577350269189626",
                                                     "3j(1 1 0 / 1 -1 0) =  .577350269189626",
                                                     "3j(1 1 0 / 1 -1 0.011) =  0"}));
    EXPECT_EQ(asker.answersLeft(), 0u);
}

TEST(SymbolCalculators, SixJAndNineJPrintTheSymbolAndItsValue) {
    ScriptedAsker sixAsker({"3 3 2 3 3 2", "3 3 2 3 3", "5 5 1 1 1 4 extra"});  // then the input ends
    MemoryLogBook sixLog;
    runSixJCalculator(sixAsker, sixLog);
    // {3 3 2; 3 3 2} = 19/420, {5 5 1; 1 1 4} = -1/sqrt(55) [physics reference 1.2]
    EXPECT_EQ(sixLog.lines(), (std::vector<std::string>{"6j{3 3 2 / 3 3 2} = " + generalNumber(19.0 / 420.0),
                                                        "6j{5 5 1 / 1 1 4} = " + generalNumber(-1 / std::sqrt(55.0))}));
    EXPECT_EQ(sixLog.lines()[0], "6j{3 3 2 / 3 3 2} =  .0452380952380952");
    const std::string sixFirst = "Give values of j1, j2, j3, j4, j5, j6" + kHint;
    const std::string sixRetry = "Please give a correct set of values" + kHint;
    EXPECT_EQ(prompts(sixAsker), (std::vector<std::string>{sixFirst, sixFirst, sixRetry, sixFirst}));

    ScriptedAsker nineAsker({"2 2 2 2 2 2 2 2", "2 2 2 2 2 2 2 2 2", "1 1 0 0 1 1 1 0 1", " "});
    MemoryLogBook nineLog;
    runNineJCalculator(nineAsker, nineLog);
    // {2 2 2; 2 2 2; 2 2 2} = 41/2450, {1 1 0; 0 1 1; 1 0 1} = 1/9
    EXPECT_EQ(nineLog.lines(), (std::vector<std::string>{"9j{2 2 2 / 2 2 2 / 2 2 2} = " + generalNumber(41.0 / 2450.0),
                                                         "9j{1 1 0 / 0 1 1 / 1 0 1} = " + generalNumber(1.0 / 9.0)}));
    const std::string nineFirst = "Give values of j1, j2, j3, j4, j5, j6, j7, j8, j9" + kHint;
    const std::string nineRetry = "Previous values of j1, j2, j3, j4, j5, j6, j7, j8, j9 are incorrect.\n"
                                  "Please give a correct set of values" + kHint;
    EXPECT_EQ(prompts(nineAsker), (std::vector<std::string>{nineFirst, nineRetry, nineFirst, nineFirst}));
}

TEST(SymbolCalculators, FactorialBeyondTheTableIsReportedAndAskedAgain) {
    ScriptedAsker asker({"20 20 20 20 20 20", "1 1 1 1 1 1", ""});
    MemoryLogBook log;
    runSixJCalculator(asker, log);
    ASSERT_EQ(asker.messages().size(), 1u);
    EXPECT_EQ(asker.messages()[0].rfind("Subscript out of range: ", 0), 0u) << asker.messages()[0];
    EXPECT_NE(asker.messages()[0].find("80"), std::string::npos) << asker.messages()[0];
    ASSERT_EQ(log.lines().size(), 1u);  // only {1 1 1; 1 1 1} = 1/6
    EXPECT_EQ(log.lines()[0], "6j{1 1 1 / 1 1 1} =  .166666666666667");
    EXPECT_EQ(prompts(asker)[1], "Please give a correct set of values" + kHint);
}

TEST(ReducedCkCalculator, TitlesFollowCorrectAndIncorrectLines) {
    ScriptedAsker asker({"3 2 3", "3 x 3", "3;6,3", ""});
    MemoryLogBook log;
    runReducedCkCalculator(asker, log);
    const std::string first = "Give values of l, k, l'" + kHint;
    const std::string retry = "Previous values of l, k, l'  are incorrect.\nPlease give a correct set of values" + kHint;
    EXPECT_EQ(prompts(asker), (std::vector<std::string>{first, first, retry, first}));
    EXPECT_EQ(titles(asker), (std::vector<std::string>{"Calculation of Reduced Matrix Element <L||C(k)|L'>",
                                                       "Another Calculation of Reduced Matrix Element <L||C(k)|L'>",
                                                       "Re-Calculation of Reduced Matrix Element <L||C(k)|L'>",
                                                       "Another Calculation of Reduced Matrix Element <L||C(k)|L'>"}));
    // <f||C(2)||f> = -1.3662601021279, <f||C(6)||f> = -1.2773807700532 [physics reference 1.3]; the line as typed
    EXPECT_EQ(log.lines(), (std::vector<std::string>{"RME <L||C(k)|L'>(3 2 3) = -1.36626010212795",
                                                     "RME <L||C(k)|L'>(3;6,3) = -1.27738077005317"}));
}

TEST(RotationMatrixCalculator, HalfIntegralJIsReadThroughTheSlash) {
    ScriptedAsker asker({"5/2 90", "5/3,90", ""});
    MemoryLogBook log;
    runRotationMatrixCalculator(asker, log);
    ASSERT_EQ(log.lines().size(), 16u);  // two blocks: title, heading, 6 rows
    const std::vector<std::string> first(log.lines().begin(), log.lines().begin() + 8);
    const std::vector<std::string> second(log.lines().begin() + 8, log.lines().end());
    EXPECT_EQ(first, second);
    EXPECT_EQ(first[0], "Rotation matrix d(J)mm'(beta) for J = 2.5 and beta = 90");
    EXPECT_EQ(first[1], "J= 2.5\t m'=-5/2\t m'=-3/2\t m'=-1/2\t m'=  1/2\t m'=  3/2\t m'=  5/2");
    // Row m = -5/2 at beta = 90: d = sqrt(C(5, J+m')) / 2^(5/2) = .176777, .395285, .559017, ...
    EXPECT_EQ(first[2], " m=-5/2\t 0.176777\t 0.395285\t 0.559017\t 0.559017\t 0.395285\t 0.176777");
    EXPECT_EQ(titles(asker), (std::vector<std::string>(3, "Calculation of rotation matrix")));
}

TEST(RotationMatrixCalculator, OrderAndHeadingFields) {
    ScriptedAsker asker({"1 90 0", "1 90 1 0", ""});
    MemoryLogBook log;
    runRotationMatrixCalculator(asker, log);
    // Rows from m = +1 down, then from m = -1 up without labels.
    // d^1(90 deg): d_{1,0} = -sin(90)/sqrt(2) = -0.707107, d_{1,1} = (1 + cos 90)/2 = 0.5, d_{1,-1} = 0.5.
    const std::vector<std::string> expected = {
        "Rotation matrix d(J)mm'(beta) for J = 1 and beta = 90",
        "J= 1\t m'=  1\t m'=  0\t m'=-1",
        " m=  1\t 0.5\t-0.707107\t 0.5",
        " m=  0\t 0.707107\t 0\t-0.707107",
        " m=-1\t 0.5\t 0.707107\t 0.5",
        "Rotation matrix d(J)mm'(beta) for J = 1 and beta = 90",
        " 0.5\t 0.707107\t 0.5",
        "-0.707107\t 0\t 0.707107",
        " 0.5\t-0.707107\t 0.5",
    };
    EXPECT_EQ(log.lines(), expected);
}

TEST(RotationMatrixCalculator, IncorrectLinesAskForACorrectPair) {
    ScriptedAsker asker({"2", "x 90", "-1 90", "abc/2 90", "/2 90", "2 90 x", "0 45", ""});
    MemoryLogBook log;
    runRotationMatrixCalculator(asker, log);
    const std::string first = "Give values of J and Beta angle in degree for d(J)mm'(Beta)" + kHint;
    const std::string retry = "Previous values of  J and Beta angle in degree for d(J)mm'(Beta) are incorrect.\n"
                              "Please give a correct pair of values" + kHint;
    EXPECT_EQ(prompts(asker), (std::vector<std::string>{first, retry, retry, retry, retry, retry, retry, first}));
    EXPECT_EQ(log.lines(), (std::vector<std::string>{"Rotation matrix d(J)mm'(beta) for J = 0 and beta = 45",
                                                     "J= 0\t m'=  0", " m=  0\t 1"}));
}

TEST(RotationMatrixCalculator, RequestReading) {
    const auto halves = readRotationMatrixRequest("7/4 30");
    ASSERT_TRUE(halves);
    EXPECT_EQ(halves->J, 3.5);  // the number before '/' divided by 2, whatever follows
    EXPECT_EQ(halves->betaDegrees, 30.0);
    EXPECT_EQ(halves->order, 1);
    EXPECT_EQ(halves->heading, 1);
    const auto full = readRotationMatrixRequest("3;-45;0;0");
    ASSERT_TRUE(full);
    EXPECT_EQ(full->J, 3.0);
    EXPECT_EQ(full->betaDegrees, -45.0);
    EXPECT_EQ(full->order, 0);
    EXPECT_EQ(full->heading, 0);
    EXPECT_FALSE(readRotationMatrixRequest("nan 30"));
    EXPECT_FALSE(readRotationMatrixRequest("1 inf"));
}

TEST(Calculators, EmptyOrCancelledAnswerEndsAtOnce) {
    using Runner = void (*)(Asker&, LogBook&);
    for (const Runner run : {&runThreeJCalculator, &runSixJCalculator, &runNineJCalculator, &runReducedCkCalculator,
                             &runRotationMatrixCalculator}) {
        ScriptedAsker empty({"", "1 1 0 1 -1 0"});
        MemoryLogBook log;
        run(empty, log);
        EXPECT_EQ(empty.questions().size(), 1u);
        EXPECT_EQ(empty.answersLeft(), 1u);
        EXPECT_TRUE(log.lines().empty());
        ScriptedAsker cancelled;
        run(cancelled, log);
        EXPECT_EQ(cancelled.questions().size(), 1u);
        EXPECT_TRUE(log.lines().empty());
    }
}

}  // namespace
