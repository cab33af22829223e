// Observed energies of an "EXPERIMENT" block against the energies of a run.
#include "engine/experiment_comparison.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "core/asker.hpp"
#include "core/atomic_file.hpp"
#include "core/log_book.hpp"
#include "core/user_error.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

TEST(ExperimentBlock, ReadsTheEnergiesOfTheBlock) {
    struct Case {
        const char* name;
        const char* text;
        std::vector<double> energies;
    };
    const std::vector<Case> cases{
        {"one per line, END", "F 3  41 STATES\nEXPERIMENT\n0.0\n 1985.5\n\n3900\nEND\n12.0\n", {0.0, 1985.5, 3900.0}},
        {"several per line, commas", "EXPERIMENT FOR NEODYMIUM\n0 117, 195.25;  490\n1985\n", {0, 117, 195.25, 490, 1985}},
        {"ends at the next block", "EXPERIMENT\n0 250\nMK,PK FOR F 3  41 STATES\n1 2 3\n", {0, 250}},
        {"no final line break", "title\nEXPERIMENT\n0 2.5e3", {0, 2500}},
        {"CRLF line ends", "EXPERIMENT\r\n0 250\r\n300\r\nEND\r\n", {0, 250, 300}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(parseExperimentBlock(c.text, "nd.txt"), c.energies);
    }
}

TEST(ExperimentBlock, ErrorsNameTheFileAndLine) {
    struct Case {
        const char* name;
        const char* text;
        const char* described;  // UserError::describe()
    };
    const std::vector<Case> cases{
        {"no block", "F 2 13 STATES\n1 2\n", "no block \"EXPERIMENT\" in pr.txt"},
        {"a label among the energies", "EXPERIMENT\n0 100\n3H5 2100\n", "pr.txt:3: \"3H5\" is not an energy"},
        {"not finite", "EXPERIMENT\nnan\n", "pr.txt:2: \"nan\" is not an energy"},
        {"empty block", "x\nEXPERIMENT\n\nEND\n", "pr.txt:2: the block \"EXPERIMENT\" holds no energies"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        try {
            parseExperimentBlock(c.text, "pr.txt");
            ADD_FAILURE() << "accepted";
        } catch (const UserError& e) {
            EXPECT_EQ(e.describe(), c.described);
            EXPECT_EQ(e.title(), "Error in comparing energies");
        }
    }
}

TEST(ExperimentComparison, PairsByPositionAndPrintsDifferences) {
    const auto c = compareWithExperiment({0.0, 100.5, 2000.0}, {0.2, 100.0, 1990.0, 3000.0});
    ASSERT_EQ(c.rows.size(), 3u);
    EXPECT_DOUBLE_EQ(c.rows[0].difference, -0.2);
    EXPECT_DOUBLE_EQ(c.rows[1].difference, 0.5);
    EXPECT_DOUBLE_EQ(c.rows[2].difference, 10.0);
    // rms of (-0.2, 0.5, 10): sqrt((0.04 + 0.25 + 100) / 3) = 5.78186...
    EXPECT_NEAR(c.rmsDifference, std::sqrt(100.29 / 3.0), 1e-12);
    EXPECT_EQ(c.observedWithoutLevel, 0);
    const auto lines = experimentComparisonLines(c);
    ASSERT_EQ(lines.size(), 5u);
    EXPECT_EQ(lines[3], "    3    2000.0000    1990.0000         10.0");
    EXPECT_NE(lines[2].find("0.5"), std::string::npos);
    EXPECT_EQ(lines[4], "3 pairs, rms of Exp.-Calc. = 5.782");

    const auto more = compareWithExperiment({0, 1, 2}, {0});
    EXPECT_EQ(more.rows.size(), 1u);
    EXPECT_EQ(more.observedWithoutLevel, 2);
    EXPECT_EQ(experimentComparisonLines(more).back(), "2 experimental energies have no calculated level");
}

TEST(ExperimentComparison, DialogReadsBothFiles) {
    const auto dir = test::scratchDirectory("experiment-comparison");
    writeFileAtomically(dir / "nd-published.txt", "F 3  41 STATES\nEXPERIMENT\n0 1990.25\nEND\n");
    writeFileAtomically(dir / "nd.eng",
                        "Energies (cm-1, shift 0): Nd\n1 0.000000 9 1 4I9/2\n2 1985.000000 11 1 4I11/2\n");
    ScriptedAsker asker({(dir / "nd-published.txt").string(), (dir / "nd.eng").string()});
    MemoryLogBook log;
    ASSERT_TRUE(compareExperimentAsking(asker, log));
    ASSERT_EQ(asker.questions().size(), 2u);
    EXPECT_EQ(asker.questions()[0].prompt, "GIVE FILE NAME FOR getting Torvelde's experimental energies from");
    EXPECT_EQ(asker.questions()[1].prompt, "GIVE FILE NAME FOR getting energies  from this Orvane program");
    EXPECT_TRUE(log.contains("5.25"));  // 1990.25 - 1985

    ScriptedAsker cancelled({(dir / "nd-published.txt").string()});
    EXPECT_FALSE(compareExperimentAsking(cancelled, log));

    ScriptedAsker missing({(dir / "absent.txt").string()});
    EXPECT_THROW(compareExperimentAsking(missing, log), UserError);
}

}  // namespace
}  // namespace orvane
