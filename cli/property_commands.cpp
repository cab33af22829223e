// The property commands: `orvane states`, `gfactors`, `moments`, `chi`,
// `intensities` and `jo-fit` (docs/cli.md, docs/properties.md). Each runs the
// engine on a parameter file, prints its report and, with --csv or --xlsx,
// a table: state numbers 1-based in ascending energy, energies in cm^-1
// above the lowest state.
#include <cmath>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/commands.hpp"
#include "cli/property_run.hpp"
#include "interactive/property_reports.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"
#include "properties/measured_lines.hpp"
#include "properties/measured_susceptibility.hpp"
#include "interactive/property_dialogs.hpp"
#include "properties/g_factors.hpp"
#include "properties/susceptibility.hpp"

namespace orvane::cli {
namespace {

// ---- states ----
struct StatesOptions {
    PropertyRunOptions run;
    int state = 0;  // 0: every state
    double minComponent = 0.002;
};

void statesCommand(const StatesOptions& options) {
    auto& log = reportLog(options.run);
    const auto run = runForProperties(options.run, log);
    const auto chosen = options.state > 0 ? std::vector<int>{stateIndex(run, options.state, "--state")} : numberedStates(run);
    writeTable(options.run, stateCompositionReport(run, chosen, options.minComponent, options.run.complex, log));
}

// ---- gfactors ----

struct GFactorOptions {
    PropertyRunOptions run;
    std::string states;  // list of state numbers, "" all
};

void gFactorsCommand(const GFactorOptions& options) {
    auto& log = reportLog(options.run);
    const auto run = runForProperties(options.run, log);
    std::vector<std::pair<int, int>> doublets;
    if (!run.states.freeIon) {
        if (options.states.empty()) doublets = pairDoublets(run.states);
        else {
            std::vector<int> numbers;
            for (const auto& field : splitAnswerFields(options.states)) {
                const auto number = parseInteger(field);
                if (!number) throw UserError("Error in Main", "--states: \"" + field + "\" is not a state number");
                numbers.push_back(*number);
            }
            doublets = doubletsOfStates(run, numbers);
        }
    }
    writeTable(options.run, gFactorReport(run, doublets, options.run, log));
}

// ---- moments ----
struct RangeOptions {
    PropertyRunOptions run;
    int initial = 0;
    std::vector<int> range;  // A B, or empty: every state
};

std::pair<int, int> rangeOf(const PropertyRun& run, const std::vector<int>& range) {
    if (range.empty()) return {0, static_cast<int>(run.states.states.size()) - 1};
    return stateRange(run, range[0], range[1]);
}

void momentsCommand(const RangeOptions& options) {
    auto& log = reportLog(options.run);
    const auto run = runForProperties(options.run, log);
    const int initial = stateIndex(run, options.initial, "--initial");
    const auto [first, last] = rangeOf(run, options.range);
    writeTable(options.run, momentReport(run, initial, first, last, options.run, log));
}

// ---- chi ----
struct ChiOptions {
    PropertyRunOptions run;
    std::string temperatures = "0.001 300";
    std::optional<double> curie;
    std::string measured;  // CSV with "Temperature" and "Average" columns
    bool ignoreExtraRows = false;  // the answer OK to the too-many-rows question
};

std::vector<double> gridOf(const std::string& answer) {
    const auto fields = splitAnswerFields(answer.empty() ? "0.001 300" : answer);
    std::vector<double> values;
    for (const auto& field : fields) {
        const auto value = parseNumber(field);
        if (!value || !std::isfinite(*value))
            throw UserError("Error in Main", "--temperatures: \"" + field + "\" is not a finite number");
        values.push_back(*value);
    }
    if (values.size() < 2 || values.size() > 3)
        throw UserError("Error in Main", "--temperatures takes \"LOW HIGH [STEP]\" in K");
    try {
        return temperatureGrid(values[0], values[1], values.size() == 3 ? std::optional(values[2]) : std::nullopt);
    } catch (const std::invalid_argument& error) {
        throw UserError("Error in Main", std::string("--temperatures: ") + error.what());
    }
}

void chiCommand(const ChiOptions& options) {
    auto& log = reportLog(options.run);
    const auto grid = gridOf(options.temperatures);
    std::vector<MeasuredSusceptibility> measured;
    if (!options.measured.empty()) {
        auto data = readMeasuredSusceptibility(options.measured);
        if (data.rowsBeyondLimit > 0 && !options.ignoreExtraRows)
            throw UserError("Magnetic susceptibility data file error",
                            options.measured + ": " + tooManyRowsQuestion(kMeasuredSusceptibilityRowLimit) +
                                " (--ignore-extra-rows answers OK)");
        measured = std::move(data.points);
    }
    const auto run = runForProperties(options.run, log);
    std::optional<double> curie = options.curie;
    if (curie && *curie <= 0.0) curie = 0.001;
    const auto report = susceptibilityReport(run, grid, curie, measured, options.run, log);
    writeTable(options.run, report.results, &report.exported);
}

// ---- intensities ----
struct IntensityOptions {
    RangeOptions range;
    std::vector<double> omega = {0.0, 0.0, 0.0};
    std::string host;
    std::vector<double> sellmeier;
    double index = 1.0;
    std::optional<double> temperature;
    double radiusSquared = 1.0;
};

void intensitiesCommand(const IntensityOptions& options) {
    auto& log = reportLog(options.range.run);
    const auto run = runForProperties(options.range.run, log);
    const int initial = stateIndex(run, options.range.initial, "--initial");
    const auto [first, last] = rangeOf(run, options.range.range);
    IntensityRequest request;
    request.input.omega = {options.omega[0], options.omega[1], options.omega[2]};
    request.input.index = refractiveIndexOf(options.host, options.sellmeier, options.index);
    request.input.radiusSquared = options.radiusSquared;
    request.temperature = options.temperature;
    writeTable(options.range.run, intensityReport(run, initial, first, last, request, log).table);
}

// ---- jo-fit ----
struct JuddOfeltOptions {
    PropertyRunOptions run;
    std::string measured;
};

void juddOfeltCommand(const JuddOfeltOptions& options) {
    auto& log = reportLog(options.run);
    const auto run = runForProperties(options.run, log);
    const auto lines = readMeasuredLines(options.measured, static_cast<int>(numberedStates(run).size()));
    writeTable(options.run, juddOfeltReport(run, lines, log));
}

template <typename Options, typename Run>
void registerCommand(CLI::App* command, std::shared_ptr<Options> options, Run run) {
    command->callback([options, run] { runPropertyCommand([&] { run(*options); }); });
}

}  // namespace

void addPropertyCommands(CLI::App& app) {
    {
        auto options = std::make_shared<StatesOptions>();
        auto* c = app.add_subcommand("states", "Composition of the eigenstates over |SL J MJ> (or |SL J>)");
        addPropertyRunOptions(*c, options->run);
        c->add_option("--state", options->state, "one state number (1-based, ascending energy)")->check(CLI::PositiveNumber);
        c->add_option("--min-component", options->minComponent, "smallest |coefficient| listed (default 0.002)")
            ->check(CLI::Range(0.0, 1.0))->check(kFiniteNumber);
        registerCommand(c, options, statesCommand);
    }
    {
        auto options = std::make_shared<GFactorOptions>();
        auto* c = app.add_subcommand("gfactors", "g-factors of the doublets (Kramers pairs and quasi-doublets)");
        addPropertyRunOptions(*c, options->run);
        c->add_option("--states", options->states, "list of state numbers (default: every doublet)");
        registerCommand(c, options, gFactorsCommand);
    }
    {
        auto options = std::make_shared<RangeOptions>();
        auto* c = app.add_subcommand("moments", "Matrix elements <i|m|j> of m = L + gs S (Bohr magnetons)");
        addPropertyRunOptions(*c, options->run);
        c->add_option("--initial", options->initial, "initial state i (1-based)")->required();
        c->add_option("--range", options->range, "first and last state j (default: all)")->expected(2);
        registerCommand(c, options, momentsCommand);
    }
    {
        auto options = std::make_shared<ChiOptions>();
        auto* c = app.add_subcommand("chi", "Magnetic susceptibility against temperature (emu/mol)");
        addPropertyRunOptions(*c, options->run);
        c->add_option("--temperatures", options->temperatures,
                      "\"LOW HIGH [STEP]\" in K (default \"0.001 300\"; 0 is taken as 0.01; no STEP: logarithmic grid)");
        c->add_option("--curie", options->curie, "temperature (K) of the Curie constant and effective moment (0: 0.001)")->check(kFiniteNumber);
        c->add_option("--measured", options->measured,
                      "measured susceptibility (.xlsx or CSV, columns \"Temperature\" and \"Average\") to compare with");
        c->add_flag("--ignore-extra-rows", options->ignoreExtraRows,
                    "read only the first rows of a measured file longer than the limit");
        registerCommand(c, options, chiCommand);
    }
    {
        auto options = std::make_shared<IntensityOptions>();
        auto* c = app.add_subcommand("intensities", "ED, MD and EQ line strengths and transition probabilities");
        addPropertyRunOptions(*c, options->range.run);
        c->add_option("--initial", options->range.initial, "initial state (1-based)")->required();
        c->add_option("--range", options->range.range, "first and last final state (default: all)")->expected(2);
        c->add_option("--omega", options->omega, "Omega2 Omega4 Omega6 in 1E-20 cm^2")->expected(3)->check(kFiniteNumber);
        auto* host = c->add_option("--host", options->host, "Sellmeier set of a host (YAG, silica)");
        c->add_option("--sellmeier", options->sellmeier, "Sellmeier pairs B1 C1 B2 C2 ... (lambda in um, C in um^2)")
            ->excludes(host)->check(kFiniteNumber);
        c->add_option("--index", options->index, "constant refractive index (default 1)")->check(CLI::PositiveNumber)->check(kFiniteNumber);
        c->add_option("--temperature", options->temperature, "K: population of the initial level (k = 0.69502 cm^-1/K)")
            ->check(CLI::PositiveNumber)->check(kFiniteNumber);
        c->add_option("--r2", options->radiusSquared, "<r^2> of the 4f shell in a0^2 for A(EQ) (default 1)")
            ->check(CLI::PositiveNumber)->check(kFiniteNumber);
        registerCommand(c, options, intensitiesCommand);
    }
    {
        auto options = std::make_shared<JuddOfeltOptions>();
        auto* c = app.add_subcommand("jo-fit", "Judd-Ofelt parameters fitted to measured ED line strengths");
        addPropertyRunOptions(*c, options->run);
        c->add_option("--measured", options->measured, "file of \"initial final S [sigma]\" lines (1E-20 cm^2)")
            ->required();
        registerCommand(c, options, juddOfeltCommand);
    }
}

}  // namespace orvane::cli
