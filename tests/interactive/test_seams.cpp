// The platform seams: settings store, atomic result files and "nul:" outputs.
#include <gtest/gtest.h>

#include <fstream>

#include "core/atomic_file.hpp"
#include "core/settings_store.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

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

TEST(AtomicFile, NulNamesMeanNoOutput) {
    EXPECT_TRUE(isNullOutputName("NUL:"));
    EXPECT_TRUE(isNullOutputName("nul:"));
    EXPECT_TRUE(isNullOutputName(""));
    EXPECT_FALSE(isNullOutputName("null.gen"));
}

}  // namespace
}  // namespace orvane
