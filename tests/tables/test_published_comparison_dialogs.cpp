// The interactive checks of one published table file: prompts, verdict lines,
// and the difference between a wrong published element (listed as a published
// error) and a table that does not match (a mismatch).
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "core/asker.hpp"
#include "core/atomic_file.hpp"
#include "core/log_book.hpp"
#include "core/user_error.hpp"
#include "tables/published_comparison_dialogs.hpp"
#include "tests/support/reference_data.hpp"
#include "tests/tables/all_configuration_tables.hpp"

namespace orvane {
namespace {

constexpr const char* kEsAgree = "No mismatch found for 2-particle electrostatic interaction in Torvelde file!!";
constexpr const char* kEsDiffer = "Some mismatch found for 2-particle electrostatic interaction RME  in Torvelde file!!";
constexpr const char* kUkAgree = "No mismatch found for U(k) and spin-orbit interaction in Torvelde file!!";
constexpr const char* kUkDiffer = "Some mismatch found for U(k) and spin-orbit interaction RME  in Torvelde file!!";

struct DialogRun {
    std::optional<bool> agrees;
    std::vector<std::string> lines;
    std::vector<std::string> prompts;
};

DialogRun runDialog(PublishedCheck check, std::vector<std::string> answers) {
    ScriptedAsker asker(std::move(answers));
    MemoryLogBook log;
    DialogRun run;
    run.agrees = comparePublishedAsking(check, asker, log);
    run.lines = log.lines();
    for (const auto& q : asker.questions()) run.prompts.push_back(q.prompt);
    return run;
}

bool hasLine(const DialogRun& run, const std::string& fragment) {
    for (const auto& line : run.lines)
        if (line.find(fragment) != std::string::npos) return true;
    return false;
}

// f1cross, f2cross and an edited f3cross in a scratch folder.
std::filesystem::path editedFolder(const std::filesystem::path& reference, const std::string& name,
                                   const std::string& from, const std::string& to) {
    const auto folder = test::scratchDirectory(name);
    for (const char* f : {"f1cross", "f2cross"})
        writeFileAtomically(folder / f, readTextFile(reference / "fncross" / f));
    std::string text = readTextFile(reference / "fncross" / "f3cross");
    const auto at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    if (at != std::string::npos) text.replace(at, from.size(), to);
    writeFileAtomically(folder / "f3cross", text);
    return folder;
}

TEST(PublishedComparisonDialogs, EachCheckOfThePublishedF3File) {
    ORVANE_REQUIRE_REFERENCE(reference);
    const std::string file = (reference / "fncross" / "f3cross").string();
    struct Case {
        PublishedCheck check;
        const char* prompt;
        std::vector<std::string> lastLines;
    };
    const std::vector<Case> cases{
        {PublishedCheck::UnitTensorsAndSpinOrbit,
         "GIVE FILE NAME FOR getting Torvelde's ME of U(k) and spin-orbit operators from",
         {kUkAgree, "Finished comparing reduced matrix elements of  U(k) and V(11) operators for f3"}},
        {PublishedCheck::Electrostatic,
         "GIVE FILE NAME FOR getting Torvelde's ME of 2-particle electrostatic interaction operators from", {kEsAgree}},
        {PublishedCheck::ThreeBody, "GIVE FILE NAME FOR getting Torvelde's ME of ti (ordinary) operators from",
         {"Finished comparing reduced matrix elements of  ti operators for f3"}},
        {PublishedCheck::MkPk, "GIVE FILE NAME FOR getting Torvelde's ME of mk and pk operators from",
         {"Finished comparing reduced matrix elements of  mk and pk operators for f3"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.prompt);
        const auto run = runDialog(c.check, {"3", file});
        ASSERT_TRUE(run.agrees.has_value());
        EXPECT_TRUE(*run.agrees);
        EXPECT_EQ(run.prompts, (std::vector<std::string>{"give no. of electron >", c.prompt}));
        ASSERT_GE(run.lines.size(), c.lastLines.size());
        const std::vector<std::string> tail(run.lines.end() - static_cast<long>(c.lastLines.size()), run.lines.end());
        EXPECT_EQ(tail, c.lastLines);
    }
    // The known published error of f3 (README 1.8: E-S T7 of 2L is -0.026053, correct -0.026503).
    EXPECT_TRUE(hasLine(runDialog(PublishedCheck::ThreeBody, {"3", file}), "published error  f3 T7 2L 2L"));
}

TEST(PublishedComparisonDialogs, WrongPublishedElementIsAPublishedErrorNotAMismatch) {
    ORVANE_REQUIRE_REFERENCE(reference);
    // f3 4S F2 coefficient -0.071795 typed as -0.071995: the file's own CFPs contradict it.
    const auto folder = editedFolder(reference, "es-typo", " 4S    -0.071795", " 4S    -0.071995");
    const auto run = runDialog(PublishedCheck::Electrostatic, {"3", (folder / "f3cross").string()});
    ASSERT_TRUE(run.agrees.has_value());
    EXPECT_TRUE(*run.agrees);
    EXPECT_EQ(run.lines.back(), kEsAgree);
    EXPECT_TRUE(hasLine(run, "published error  f3 f(2) 4S 4S: published -0.071995000"));
}

TEST(PublishedComparisonDialogs, WrongParentageSignIsAMismatch) {
    ORVANE_REQUIRE_REFERENCE(reference);
    // One coefficient of fractional parentage of f3 2D1 with the wrong sign: no
    // per-term phase explains it, so the CFP and U(k), V(1k) checks fail; the
    // published electrostatic matrices themselves are right and still agree.
    const auto folder = editedFolder(reference, "cfp-sign", "   1 0.247435830   2-0.623609564",
                                     "   1-0.247435830   2-0.623609564");
    const std::string file = (folder / "f3cross").string();
    const auto uk = runDialog(PublishedCheck::UnitTensorsAndSpinOrbit, {"3", file});
    ASSERT_TRUE(uk.agrees.has_value());
    EXPECT_FALSE(*uk.agrees);
    EXPECT_EQ(uk.lines[uk.lines.size() - 2], kUkDiffer);
    EXPECT_TRUE(hasLine(uk, "mismatch  f3 CFP 2D1"));
    const auto es = runDialog(PublishedCheck::Electrostatic, {"3", file});
    ASSERT_TRUE(es.agrees.has_value());
    EXPECT_TRUE(*es.agrees);
    EXPECT_EQ(es.lines.back(), kEsAgree);
}

TEST(PublishedComparisonDialogs, GeneratorFaultInTheCoulombMatrixIsAMismatch) {
    ORVANE_REQUIRE_REFERENCE(reference);
    const auto read = [&](const char* name) {
        const auto file = reference / "fncross" / name;
        return parsePublishedTables(readTextFile(file), file.string());
    };
    const Eigen::MatrixXd f2Phases =
        compareConfiguration(test::allConfigurationTables()[2], read("f2cross"), Eigen::MatrixXd::Identity(1, 1))
            .transformation;
    // A generated f(4) off by 0.001 on the f3 4F diagonal: neither the published
    // element nor the published CFPs agree with it.
    ConfigurationTables faulty = test::allConfigurationTables()[3];
    faulty.coulomb[1](2, 2) += 1e-3;
    PublishedConfigurationResult result;
    result.file = reference / "fncross" / "f3cross";
    result.hasElectrostatic = true;
    result.tables = compareConfiguration(faulty, read("f3cross"), f2Phases);
    const auto lines = publishedCheckLines(result, PublishedCheck::Electrostatic, true);
    EXPECT_EQ(lines.back(), kEsDiffer);
    EXPECT_NE(std::find_if(lines.begin(), lines.end(),
                           [](const std::string& l) { return l.find("mismatch  f3 f(4) 4F 4F") != std::string::npos; }),
              lines.end());
    EXPECT_FALSE(publishedCheckAgrees(result, PublishedCheck::Electrostatic));
    EXPECT_TRUE(publishedCheckAgrees(result, PublishedCheck::UnitTensorsAndSpinOrbit));
    EXPECT_EQ(publishedCheckLines(result, PublishedCheck::UnitTensorsAndSpinOrbit, false).front(), kUkAgree);
}

TEST(PublishedComparisonDialogs, DifferentTermListsFailEveryCheck) {
    PublishedConfigurationResult result;
    result.tables.electrons = 3;
    result.tables.termsAgree = false;
    result.hasElectrostatic = true;
    const std::string differ = "  the term list of the published file differs from the generated one";
    EXPECT_EQ(publishedCheckLines(result, PublishedCheck::UnitTensorsAndSpinOrbit, true),
              (std::vector<std::string>{differ, kUkDiffer,
                                        "Finished comparing reduced matrix elements of  U(k) and V(11) operators for f3"}));
    EXPECT_EQ(publishedCheckLines(result, PublishedCheck::Electrostatic, true),
              (std::vector<std::string>{differ, kEsDiffer}));
    EXPECT_EQ(publishedCheckLines(result, PublishedCheck::ThreeBody, true),
              (std::vector<std::string>{differ, "Finished comparing reduced matrix elements of  ti operators for f3"}));
    for (auto check : {PublishedCheck::UnitTensorsAndSpinOrbit, PublishedCheck::Electrostatic, PublishedCheck::ThreeBody,
                       PublishedCheck::MkPk})
        EXPECT_FALSE(publishedCheckAgrees(result, check));
}

TEST(PublishedComparisonDialogs, QuestionsAndMissingFiles) {
    ORVANE_REQUIRE_REFERENCE(reference);
    // A wrong number of electrons is asked again; a cancelled file question ends without a verdict.
    const auto cancelled = runDialog(PublishedCheck::Electrostatic, {"0", "3"});
    EXPECT_FALSE(cancelled.agrees.has_value());
    EXPECT_EQ(cancelled.prompts.size(), 3u);
    EXPECT_TRUE(hasLine(cancelled, "Wrong no. of e- !!!"));
    // f1 has no E-S block.
    const auto f1 = runDialog(PublishedCheck::Electrostatic, {"1", (reference / "fncross" / "f1cross").string()});
    ASSERT_TRUE(f1.agrees.has_value());
    EXPECT_EQ(f1.lines.back().rfind("No E-S block for f1 in ", 0), 0u);
    // The phases of f3 need f1cross and f2cross beside the given file.
    const auto folder = test::scratchDirectory("lonely-f3");
    writeFileAtomically(folder / "f3cross", readTextFile(reference / "fncross" / "f3cross"));
    try {
        runDialog(PublishedCheck::ThreeBody, {"3", (folder / "f3cross").string()});
        FAIL() << "missing f1cross accepted";
    } catch (const UserError& e) {
        EXPECT_NE(std::string(e.what()).find("f1cross not found"), std::string::npos) << e.what();
    }
}

}  // namespace
}  // namespace orvane
