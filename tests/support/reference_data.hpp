#pragma once
// The one way tests reach the published reference tables (../shared/reference
// beside the project, or $ORVANE_REFERENCE_DIR). Where they are absent the test
// is skipped with a message, never failed.
#include <filesystem>
#include <optional>

#include <gtest/gtest.h>

namespace orvane::test {

std::optional<std::filesystem::path> referenceDirectory();
// The project's source directory (for examples/ and data/).
std::filesystem::path sourceDirectory();
// A fresh, empty directory for one test's files, removed by the next call with
// the same name.
std::filesystem::path scratchDirectory(const std::string& name);

}  // namespace orvane::test

// Declares `referenceDir` (a std::filesystem::path) or skips the test.
#define ORVANE_REQUIRE_REFERENCE(referenceDir)                                              \
    const auto referenceDir##_optional = ::orvane::test::referenceDirectory();              \
    if (!referenceDir##_optional)                                                          \
        GTEST_SKIP() << "published reference tables not found (../shared/reference or "  \
                        "$ORVANE_REFERENCE_DIR); skipping the comparison";                 \
    const std::filesystem::path referenceDir = *referenceDir##_optional
