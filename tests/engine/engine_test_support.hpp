#pragma once
// Helpers shared by the engine tests: one table directory for every test
// process and parameter rows typed as numbers.
#include <filesystem>
#include <string>

#include <fmt/format.h>

#include "engine/parameter_set.hpp"

namespace orvane::test {

// One directory for every test process, never emptied: ctest may run tests of
// the engine program in parallel, and tables are written atomically and only
// when missing.
inline std::filesystem::path engineTableDirectory() {
    static const auto directory = [] {
        const auto path =
            std::filesystem::path(ORVANE_BINARY_DIR) / "test-scratch" / "engine-tables";
        std::filesystem::create_directories(path);
        return path;
    }();
    return directory;
}

inline FreeIonRow row(const std::string& name, double value) {
    return {name, {fmt::format("{}", value), value}};
}

inline CrystalFieldRow bkq(int k, int q, double re, double im = 0.0) {
    return {k, q, {fmt::format("{}", re), re}, {fmt::format("{}", im), im}};
}

}  // namespace orvane::test
