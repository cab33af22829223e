// The C++ side of the Python module's cost (docs/performance.md, "Python
// module"): computeScriptLevels, the call behind orvane.run, on the example
// parameter files, with the options the Python timing script
// (bench/python_run_timing.py) uses. Files are read from $ORVANE_EXAMPLES_DIR,
// else ./examples (run from the source folder); the tables from the default
// table directory (docs/tables.md).
#include <cstdlib>
#include <filesystem>
#include <string>

#include <benchmark/benchmark.h>

#include "engine/parameter_file.hpp"
#include "python/script_run.hpp"
#include "tables/table_directory.hpp"

namespace {

using namespace orvane;

std::filesystem::path examples() {
    const char* dir = std::getenv("ORVANE_EXAMPLES_DIR");
    return dir ? dir : "examples";
}

void ScriptRun(benchmark::State& state, const char* file, bool vectors, bool derivatives) {
    const auto set = readParameterFile(examples() / file);
    const auto tables = defaultTableDirectory();
    computeScriptLevels(set, {false, vectors, derivatives}, tables);  // tables generated outside the timing
    for (auto _ : state) {
        auto levels = computeScriptLevels(set, {false, vectors, derivatives}, tables);
        benchmark::DoNotOptimize(levels.energies.data());
    }
}

#define ORVANE_SCRIPT_RUN(name, file)                                                                    \
    BENCHMARK_CAPTURE(ScriptRun, name##_all, file, true, true)->Unit(benchmark::kMillisecond);          \
    BENCHMARK_CAPTURE(ScriptRun, name##_energies, file, false, false)->Unit(benchmark::kMillisecond)

ORVANE_SCRIPT_RUN(Pr3plus, "Pr3plus-LaF3.par");
ORVANE_SCRIPT_RUN(Nd3plus, "Nd3plus-LaF3.par");
ORVANE_SCRIPT_RUN(Er3plus, "Er3plus-LaF3.par");

}  // namespace
