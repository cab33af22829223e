// Replays the malformed and quirky parameter files of parameter_corpus/ (hand
// made, plus inputs the fuzzer found): each must either parse and survive the
// writer, or be refused with a UserError naming the file and a line. Files
// that must parse are listed; every other file must be refused.
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>

#include "core/atomic_file.hpp"
#include "core/user_error.hpp"
#include "engine/parameter_file.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

// Files of the corpus that are valid despite their quirks.
const std::set<std::string> kMustParse = {
    "version1-no-header.par",   // no header line: first line is the title
    "switches-any-order.par",   // extra text, repeated /Eunit, old IR form
    "ccf-good.par",             // two correlation sections
    "m2-blank.par",             // M2 row without a value
    "note-with-braces.par",     // note cut at its first "}"
    "cf-row-three-fields.par",  // Bkq row without imaginary part
    "fit-options-only.par",     // fit options straight after the Bkq rows
};

TEST(ParameterCorpus, EveryFileParsesOrIsRefusedWithFileAndLine) {
    const auto dir = test::sourceDirectory() / "tests" / "engine" / "parameter_corpus";
    ASSERT_TRUE(std::filesystem::is_directory(dir)) << dir;
    int files = 0, parsed = 0;
    for (const auto& entry : std::filesystem::directory_iterator(dir)) {
        if (!entry.is_regular_file()) continue;
        ++files;
        const std::string name = entry.path().filename().string();
        const bool mustParse = kMustParse.count(name) > 0;
        try {
            const ParameterSet set = readParameterFile(entry.path());
            ++parsed;
            EXPECT_TRUE(mustParse) << name << " parsed but should be refused";
            ParameterSet back = parseParameterText(parameterFileText(set), name);
            back.optionLine = set.optionLine;
            back.switches.printHamiltonian = set.switches.printHamiltonian;
            EXPECT_EQ(back, set) << name << " changed on writing";
        } catch (const UserError& error) {
            EXPECT_FALSE(mustParse) << name << ": " << error.describe();
            ASSERT_TRUE(error.where().has_value()) << name << ": " << error.describe();
            EXPECT_EQ(error.where()->file, entry.path().string()) << name;
            EXPECT_GE(error.where()->line, 1) << name;
            EXPECT_FALSE(std::string(error.what()).empty()) << name;
        }
    }
    EXPECT_GE(files, 20);
    EXPECT_EQ(parsed, static_cast<int>(kMustParse.size()));
}

}  // namespace
}  // namespace orvane
