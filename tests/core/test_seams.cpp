// The platform seams: log book, questions to the user, settings store and
// atomic result files.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "core/asker.hpp"
#include "core/atomic_file.hpp"
#include "core/log_book.hpp"
#include "core/settings_store.hpp"
#include "core/user_error.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

TEST(LogBook, MemoryKeepsLinesInOrder) {
    MemoryLogBook log;
    log.appendLine("first");
    log.appendLine("second line");
    EXPECT_EQ(log.text(), "first\nsecond line\n");
    EXPECT_TRUE(log.contains("cond li"));
    EXPECT_FALSE(log.contains("third"));
    EXPECT_EQ(logSeparatorLine(), std::string(55, '#'));
}

TEST(LogBook, FileLogAppendsAcrossInstances) {
    const auto dir = test::scratchDirectory("file_log");
    const auto path = dir / "log.txt";
    { FileLogBook(path).appendLine("one"); }
    { FileLogBook(path).appendLine("two"); }
    std::ifstream in(path);
    std::stringstream content;
    content << in.rdbuf();
    EXPECT_EQ(content.str(), "one\ntwo\n");
    EXPECT_THROW(FileLogBook(dir / "no" / "such" / "dir" / "log.txt"), UserError);
}

TEST(Asker, TerminalReadsLinesAndDefaults) {
    std::istringstream in("1 2 3\n\r\n\n");
    std::ostringstream out;
    TerminalAsker asker(in, out);
    EXPECT_EQ(asker.askLine({"Give values >", "", ""}), "1 2 3");
    EXPECT_EQ(asker.askLine({"Store into file", "", "CFP.VAL"}), "CFP.VAL");
    EXPECT_EQ(asker.askLine({"Empty ends", "", ""}), "");
    EXPECT_EQ(asker.askLine({"End of input", "", ""}), std::nullopt);
    EXPECT_NE(out.str().find("Give values >"), std::string::npos);
}

TEST(Asker, TerminalChoiceRepeatsUntilUnderstood) {
    std::istringstream in("maybe\nY\nc\n");
    std::ostringstream out;
    TerminalAsker asker(in, out);
    EXPECT_EQ(asker.askChoice("Clear Log Book", "Clear?", Buttons::YesNoCancel), Choice::Yes);
    EXPECT_EQ(asker.askChoice("Clear Log Book", "Clear?", Buttons::YesNoCancel), Choice::Cancel);
    // Input ended: the safe answer.
    EXPECT_EQ(asker.askChoice("Clear Log Book", "Clear?", Buttons::YesNoCancel), Choice::Cancel);
    EXPECT_EQ(asker.askChoice("Question", "Go on?", Buttons::YesNo), Choice::No);
}

TEST(Asker, ScriptedRecordsQuestionsAndMessages) {
    ScriptedAsker asker({"5", ""}, {Choice::No});
    EXPECT_EQ(asker.askLine({"give no. of electron >", "", ""}), "5");
    EXPECT_EQ(asker.askLine({"Store CFP into file ", "", "CFP.VAL"}), "CFP.VAL");
    EXPECT_EQ(asker.askLine({"anything more?", "", ""}), std::nullopt);
    asker.showMessage("Error in Main", "Incorrect Slater paramter type!!");
    EXPECT_EQ(asker.askChoice("Check", "Update?", Buttons::YesNoCancel), Choice::No);
    EXPECT_EQ(asker.askChoice("Check", "Update?", Buttons::YesNoCancel), Choice::Cancel);
    ASSERT_EQ(asker.questions().size(), 3u);
    EXPECT_EQ(asker.questions()[1].prompt, "Store CFP into file ");
    ASSERT_EQ(asker.messages().size(), 3u);
    EXPECT_EQ(asker.messages()[0], "Error in Main: Incorrect Slater paramter type!!");
}

TEST(SettingsStore, IniSurvivesReopeningAndKeepsSections) {
    const auto dir = test::scratchDirectory("settings");
    const auto path = dir / "sub" / "orvane.ini";
    {
        IniSettingsStore store(path);
        EXPECT_EQ(store.readInt("Settings", "MainLeft", 1000), 1000);  // default when absent
        store.write("Settings", "MainLeft", "1200");
        store.write("Files", "file1", "/data/Er.par");
        store.write("Files", "file2", "/data/Nd.par");
        store.remove("Files", "file2");
    }
    IniSettingsStore reopened(path);
    EXPECT_EQ(reopened.readInt("Settings", "MainLeft", 1000), 1200);
    EXPECT_EQ(reopened.read("Files", "file1"), "/data/Er.par");
    EXPECT_EQ(reopened.read("Files", "file2"), std::nullopt);
    EXPECT_EQ(reopened.read("Settings", "file1"), std::nullopt);  // sections are separate
}

TEST(SettingsStore, MalformedIniLinesAreIgnored) {
    const auto values = parseIni("junk\n[Settings]\nMainTop = 900\nno equals\n[]\nx=1\n");
    ASSERT_EQ(values.count("Settings"), 1u);
    EXPECT_EQ(values.at("Settings").at("MainTop"), "900");
    EXPECT_EQ(parseIni(formatIni(values)), values);
    MemorySettingsStore memory;
    memory.write("Settings", "MainWidth", "abc");
    EXPECT_EQ(memory.readInt("Settings", "MainWidth", 6500), 6500);
}

TEST(AtomicFile, CommitReplacesAndAbandonLeavesOldContent) {
    const auto dir = test::scratchDirectory("atomic");
    const auto path = dir / "Er.eng";
    writeFileAtomically(path, "old\n");
    {
        AtomicFileWriter writer(path);
        writer.stream() << "half-written";
        // destroyed without commit: a failed run
    }
    EXPECT_EQ(readTextFile(path), "old\n");
    {
        AtomicFileWriter writer(path);
        writer.stream() << "new\n";
        writer.commit();
    }
    EXPECT_EQ(readTextFile(path), "new\n");
    // No temporary file is left behind.
    int files = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(dir)) ++files;
    EXPECT_EQ(files, 1);
}

TEST(AtomicFile, FailuresNameTheFile) {
    const auto dir = test::scratchDirectory("atomic_fail");
    try {
        writeFileAtomically(dir / "missing" / "x.gen", "text");
        FAIL() << "writing into a missing folder must fail";
    } catch (const UserError& error) {
        EXPECT_NE(std::string(error.what()).find("x.gen"), std::string::npos);
    }
    try {
        readTextFile(dir / "absent.par");
        FAIL() << "reading a missing file must fail";
    } catch (const UserError& error) {
        EXPECT_NE(std::string(error.what()).find("absent.par"), std::string::npos);
    }
    writeFileAtomically(dir / "big.txt", std::string(2000, 'x'));
    EXPECT_THROW(readTextFile(dir / "big.txt", 1000), UserError);
    EXPECT_TRUE(isNullOutputName("NUL:"));
    EXPECT_TRUE(isNullOutputName("nul:"));
    EXPECT_TRUE(isNullOutputName(""));
    EXPECT_FALSE(isNullOutputName("null.gen"));
}

TEST(UserError, DescribeNamesFileAndLine) {
    const UserError located("Error in Main", "Incorrect Slater paramter type!!",
                            FileLocation{"Er.par", 4});
    EXPECT_EQ(located.describe(), "Er.par:4: Incorrect Slater paramter type!!");
    EXPECT_EQ(located.title(), "Error in Main");
    const UserError plain("Error", "Can't find input parameters file!");
    EXPECT_EQ(plain.describe(), "Can't find input parameters file!");
}

}  // namespace
}  // namespace orvane
