// Damaged generated tables are found before use: each fault applied to a copy
// of freshly generated f3 tables must be named (file and what is wrong) and
// the table generated again, after which the engine reads the tables.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "core/atomic_file.hpp"
#include "core/log_book.hpp"
#include "tables/table_builder.hpp"
#include "tables/table_seal.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

namespace fs = std::filesystem;

// The text with the first `from` after the title line replaced.
std::string replaced(std::string text, const std::string& from, const std::string& to) {
    const auto at = text.find(from, text.find('\n'));
    EXPECT_NE(at, std::string::npos) << from;
    return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

// The lines of a text with lines i and j exchanged (0 = the title).
std::string swappedLines(const std::string& text, std::size_t i, std::size_t j) {
    std::vector<std::string> lines;
    for (std::size_t start = 0; start < text.size();) {
        const auto end = text.find('\n', start);
        lines.push_back(text.substr(start, end - start));
        start = end == std::string::npos ? text.size() : end + 1;
    }
    std::swap(lines[i], lines[j]);
    std::string joined;
    for (const auto& line : lines) joined += line + "\n";
    return joined;
}

TEST(TableIntegrity, EveryDamagedTableIsNamedAndGeneratedAgain) {
    const auto pristine = test::scratchDirectory("integrity_pristine");
    MemoryLogBook log;
    ensureConfigurationTables(3, pristine, log);
    const auto read = [&](const std::string& name) { return readTextFile(pristine / name); };
    struct Fault {
        const char* name;
        const char* file;
        std::function<std::string()> text;
        const char* problem;
    };
    const Fault faults[] = {
        {"empty", "f3rmu2.val", [] { return std::string(); }, "is empty"},
        {"truncated", "f3rmu4.val",
         [&] {
             auto text = read("f3rmu4.val");
             return text.substr(0, text.rfind('\n', text.size() - 2) + 1);
         },
         "(truncated?)"},
        {"value_changed", "f3rmv11.val", [&] { return replaced(read("f3rmv11.val"), "1", "2"); },
         "does not match the checksum"},
        {"swapped", "f3rmu2.val", [&] { return read("f3rmu4.val"); }, "holds the table f3rmu4.val"},
        {"labels_reordered", "f3state.lab", [&] { return swappedLines(read("f3state.lab"), 1, 2); },
         "does not match the checksum"},
        {"label_duplicated", "f3state.lab",
         [&] {
             const auto text = read("f3state.lab");
             const auto second = text.find('\n') + 1;
             return text + text.substr(second, text.find('\n', second) + 1 - second);
         },
         "18 records where its title line announces 17 records"},
        {"older_generator", "f3cfp.val",
         [&] {
             auto text = read("f3cfp.val");
             return text.replace(text.find('['), text.find(']') - text.find('[') + 1, "[Orvane tables generator 1]");
         },
         "another version of the generator"},
    };
    for (const auto& fault : faults) {
        SCOPED_TRACE(fault.name);
        const auto dir = test::scratchDirectory(std::string("integrity_") + fault.name);
        for (const auto& entry : fs::directory_iterator(pristine))
            fs::copy_file(entry.path(), dir / entry.path().filename(), fs::copy_options::overwrite_existing);
        writeFileAtomically(dir / fault.file, fault.text());
        const auto problem = tableFileProblem(dir, fault.file);
        ASSERT_TRUE(problem.has_value());
        EXPECT_NE(problem->find(fault.problem), std::string::npos) << *problem;
        MemoryLogBook repair;
        EXPECT_EQ(ensureConfigurationTables(3, dir, repair), dir);
        EXPECT_TRUE(repair.contains((dir / fault.file).string() + " " + *problem)) << repair.text();
        EXPECT_EQ(readTextFile(dir / fault.file), readTextFile(pristine / fault.file)) << "not generated again";
    }
    // A table from elsewhere (no generator bracket) is taken as it stands.
    EXPECT_FALSE(tableTextProblem("f3rmu2.val", "U(2) MATRIX  f3\n 1  2   .5\n").has_value());
}

}  // namespace
}  // namespace orvane
