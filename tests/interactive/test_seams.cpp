// The platform seams: log book events, questions to the user, settings store,
// atomic result files and error categories.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "interactive/asker.hpp"
#include "core/atomic_file.hpp"
#include "core/log_book.hpp"
#include "core/settings_store.hpp"
#include "core/user_error.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

TEST(LogBook, EventsReachTheCallbackAndOnlyLinesArePrinted) {
    std::vector<LogEvent> events;
    CallbackLogBook sink([&](const LogEvent& event) { events.push_back(event); });
    sink.appendLine("first");
    sink.progress(LogCategory::Tables, "configuration tables", 3, 14);
    sink.warn(LogCategory::FreeIon, "careful");
    ASSERT_EQ(events.size(), 3u);
    EXPECT_EQ(events[0].kind, LogEventKind::Line);
    EXPECT_EQ(events[1].category, LogCategory::Tables);
    EXPECT_EQ(events[1].done, 3);
    EXPECT_EQ(events[1].total, 14);
    EXPECT_EQ(events[2].kind, LogEventKind::Warning);
    std::ostringstream out;
    StreamLogBook terminal(out);
    for (const auto& event : events) terminal.record(event);
    EXPECT_EQ(out.str(), "first\ncareful\n");
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

TEST(UserError, CategoriesAndTitlesCorrespond) {
    const UserError located(ErrorCategory::Main, "Incorrect Slater paramter type!!", FileLocation{"Er.par", 4});
    EXPECT_EQ(located.describe(), "Er.par:4: Incorrect Slater paramter type!!");
    EXPECT_EQ(located.title(), "Error in Main");
    struct Case {
        ErrorCategory category;
        const char* title;
    };
    const Case cases[] = {{ErrorCategory::RealEngine, "Error in real CF main program"},
                          {ErrorCategory::ComplexEngine, "Error in main program for complex CF"},
                          {ErrorCategory::Tables, "Error in building tables"},
                          {ErrorCategory::SuperpositionModel, "Error in SM estimation"},
                          {ErrorCategory::StoringEnergies, "Error in storing up energies"}};
    for (const auto& c : cases) {
        EXPECT_EQ(errorTitle(c.category), c.title);
        EXPECT_EQ(UserError(c.title, "m").category(), c.category) << c.title;
    }
    // Every category has its own title.
    for (int a = 1; a <= static_cast<int>(ErrorCategory::LogBook); ++a) {
        const auto category = static_cast<ErrorCategory>(a);
        EXPECT_FALSE(errorTitle(category).empty()) << a;
        EXPECT_EQ(errorCategoryOfTitle(errorTitle(category)), category) << errorTitle(category);
    }
    const UserError plain("Error", "Can't find input parameters file!");
    EXPECT_EQ(plain.category(), ErrorCategory::Other);
    EXPECT_EQ(plain.title(), "Error");
}

}  // namespace
}  // namespace orvane
