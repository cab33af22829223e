#include "tests/support/reference_data.hpp"

#include <cstdlib>
#include <system_error>

namespace orvane::test {

std::optional<std::filesystem::path> referenceDirectory() {
    std::error_code error;
    if (const char* env = std::getenv("ORVANE_REFERENCE_DIR"); env && *env) {
        if (std::filesystem::is_directory(env, error)) return std::filesystem::path(env);
        return std::nullopt;
    }
    const auto candidate = std::filesystem::path(ORVANE_SOURCE_DIR).parent_path() / "shared" /
                           "reference";
    if (std::filesystem::is_directory(candidate, error)) return candidate;
    return std::nullopt;
}

std::filesystem::path sourceDirectory() { return std::filesystem::path(ORVANE_SOURCE_DIR); }

std::filesystem::path scratchDirectory(const std::string& name) {
    const auto dir = std::filesystem::path(ORVANE_BINARY_DIR) / "test-scratch" / name;
    std::error_code error;
    std::filesystem::remove_all(dir, error);
    std::filesystem::create_directories(dir);
    return dir;
}

}  // namespace orvane::test
