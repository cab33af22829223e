// The property commands: `orvane states`, `gfactors`, `moments`, `chi`,
// `intensities` and `jo-fit` (docs/cli.md, docs/properties.md). Each runs the
// engine on a parameter file, prints its report and, with --csv or --xlsx,
// a table: state numbers 1-based in ascending energy, energies in cm^-1
// above the lowest state.
#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "cli/commands.hpp"
#include "cli/property_run.hpp"
#include "core/number_format.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"
#include "properties/g_factors.hpp"
#include "properties/intensities.hpp"
#include "properties/magnetic_moment.hpp"
#include "properties/measured_lines.hpp"
#include "properties/measured_susceptibility.hpp"
#include "interactive/property_dialogs.hpp"
#include "properties/state_composition.hpp"
#include "properties/susceptibility.hpp"
#include "properties/susceptibility_sheet.hpp"

namespace orvane::cli {
namespace {

std::string spinGNote(double spinG) { return "Magnetic moment mu = -muB (L + gs S), gs = " + fmt::format("{:.10g}", spinG); }

// Scientific for small magnitudes, fixed otherwise (or the --accuracy places).
std::string chiText(double value, const PropertyRunOptions* options = nullptr) {
    if (options && !options->accuracy.empty()) return propertyText(value, *options, "");
    return std::abs(value) < 0.001 && value != 0.0 ? formatNumber(value, "0.0000e+##") : formatNumber(value, "#0.000000");
}

// ---- states ----
struct StatesOptions {
    PropertyRunOptions run;
    int state = 0;  // 0: every state
    double minComponent = 0.002;
};

void statesCommand(const StatesOptions& options) {
    auto& log = reportLog(options.run);
    const auto run = runForProperties(options.run, log);
    const auto& states = run.states;
    const bool complex = options.run.complex;
    std::vector<int> chosen;
    if (options.state > 0) chosen.push_back(stateIndex(run, options.state, "--state"));
    else
        chosen = numberedStates(run);
    PropertyTable table({"state", "energy", "component", "re", "im"}, {"", "######0.0000", "", "#0.00000", "#0.00000"});
    for (int i : chosen) {
        const auto composition = stateComposition(states, i, options.minComponent);
        log.appendLine(fmt::format("Statevector # {}   Energy = {}", stateNumber(run, i),
                                   formatNumber(composition.energy, "######0.0000")));
        log.appendLine(complex ? "Component            coeff     Im coeff" : "Component            coeff");
        for (const auto& line : composition.lines) {
            std::string text = fmt::format("{:<18}{}", line.label, formatNumber(line.coefficient.real(), "#0.00000"));
            if (complex) text += "  " + formatNumber(line.coefficient.imag(), "#0.00000");
            log.appendLine(text);
            table.add({double(stateNumber(run, i)), composition.energy, line.label, line.coefficient.real(),
                       line.coefficient.imag()});
        }
        log.appendLine(fmt::format("Subtotal {} {}", formatNumber(100.0 * composition.subtotal, "###0.00"),
                                   formatNumber(composition.subtotal, "#0.#####")));
    }
    writeTable(options.run, table);
}

// ---- gfactors ----

// The g-factor table's columns and their formats (g values "#0.00000").
const std::vector<std::string> kGFactorFormats = {"", "", "######0.0000", "#0.00000", "#0.00000", "#0.00000",
                                                  "##0.00", "##0.00", "##0.00", "#0.00000", "#0.00000"};
struct GFactorOptions {
    PropertyRunOptions run;
    std::string states;  // list of state numbers, "" all
};

// Free ion: g_J = <J J|m_z|J J> / J of every multiplet with J > 0.
void freeIonGFactors(const PropertyRun& run, const TensorOperator& moment, const PropertyRunOptions& options) {
    auto& log = reportLog(options);
    log.appendLine(spinGNote(run.spinG));
    PropertyTable table({"first", "second", "energy", "gx", "gy", "gz"}, kGFactorFormats);
    for (int first : numberedStates(run)) {
        const int last = run.states.levelMembers(run.states.states[first].level).back();
        const int twiceJ = run.states.states[last].twiceMu;
        if (twiceJ == 0) continue;
        const auto rows = cartesianFromSpherical(moment.braRows(last));
        const double g = moment.contractWith(rows, last)(2).real() / (twiceJ / 2.0);
        const int number = stateNumber(run, first);
        const double energy = run.states.relativeEnergy(first);
        log.appendLine(fmt::format("g values for multiplet # {} ({} cm-1): gJ = {}", number,
                                   formatNumber(energy, "######0.0000"), propertyText(g, options, "#0.0000")));
        table.add({double(number), double(number), energy, g, g, g});
    }
    writeTable(options, table);
}

void gFactorsCommand(const GFactorOptions& options) {
    auto& log = reportLog(options.run);
    const auto run = runForProperties(options.run, log);
    const auto moment = magneticMomentOperator(run.states, run.spinG);
    if (run.states.freeIon) {
        freeIonGFactors(run, moment, options.run);
        return;
    }
    auto pairs = pairDoublets(run.states);
    if (!options.states.empty()) {
        std::vector<std::pair<int, int>> wanted;
        for (const auto& field : splitAnswerFields(options.states)) {
            const auto number = parseInteger(field);
            if (!number) throw UserError("Error in Main", "--states: \"" + field + "\" is not a state number");
            const int i = stateIndex(run, *number, "--states");
            const auto found = std::find_if(pairs.begin(), pairs.end(), [i](const auto& p) { return p.first == i || p.second == i; });
            if (found == pairs.end()) throw UserError("Error in Main", fmt::format("state {} is not part of a doublet", *number));
            if (std::find(wanted.begin(), wanted.end(), *found) == wanted.end()) wanted.push_back(*found);
        }
        pairs = wanted;
    }
    const bool quasi = !run.states.kramers();
    log.appendLine(spinGNote(run.spinG));
    std::vector<std::string> columns = {"first", "second", "energy", "gx", "gy", "gz", "alpha", "beta", "gamma"};
    if (quasi) columns.insert(columns.end(), {"gz1", "gz2"});
    PropertyTable table(columns, kGFactorFormats);
    for (const auto& [first, second] : pairs) {
        const auto g = doubletGFactors(run.states, moment, first, second);
        const double energy = run.states.relativeEnergy(first);
        log.appendLine(fmt::format("g values for states # {} and {} ({} cm-1)", first + 1, second + 1,
                                   formatNumber(energy, "######0.0000")));
        const auto text = [&](double v) { return propertyText(v, options.run, "#0.0000"); };
        std::string line = "gz = " + text(g.g[2]) + " gx = " + text(g.g[0]) + " gy = " + text(g.g[1]);
        if (quasi) line += " gz' = " + text(g.gz1) + " + " + " gz'' = " + text(g.gz2);
        log.appendLine(line);
        log.appendLine(" ux = " + text(g.moment[0]) + " uy = " + text(g.moment[1]) + " uz' = " + text(g.moment[2]));
        log.appendLine(fmt::format("principal axes (alpha, beta, gamma) = ({}, {}, {}) degrees",
                                   formatNumber(g.eulerAngles[0], "##0.00"), formatNumber(g.eulerAngles[1], "##0.00"),
                                   formatNumber(g.eulerAngles[2], "##0.00")));
        std::vector<SheetValue> row = {double(first + 1), double(second + 1), energy};
        for (double v : g.g) row.emplace_back(v);
        for (double v : g.eulerAngles) row.emplace_back(v);
        if (quasi) row.insert(row.end(), {g.gz1, g.gz2});
        table.add(row);
    }
    writeTable(options.run, table);
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

std::string elementText(std::complex<double> value, const PropertyRunOptions& options) {
    const auto text = [&](double v) { return propertyText(v, options, "##0.00000"); };
    if (std::abs(value.imag()) < 5e-6) return text(value.real());
    if (std::abs(value.real()) < 5e-6) return text(value.imag()) + "i";
    return text(value.real()) + (value.imag() >= 0 ? " +" : " ") + std::string(trim(text(value.imag()))) + "i";
}

void momentsCommand(const RangeOptions& options) {
    auto& log = reportLog(options.run);
    const auto run = runForProperties(options.run, log);
    const int initial = stateIndex(run, options.initial, "--initial");
    const auto [first, last] = rangeOf(run, options.range);
    const auto moment = magneticMomentOperator(run.states, run.spinG);
    log.appendLine(spinGNote(run.spinG));
    log.appendLine(fmt::format("matrix elements of magnetic moments (in unit of Bohr magnetron) for initial state# i={}",
                               stateNumber(run, initial)));
    log.appendLine("# j    <i|mx|j>   <i|my|j>   <i|mz|j>   <i|mx|j>^2 <i|my|j>^2 <i|mz|j>^2");
    std::vector<std::string> columns = {"i", "j", "mx2", "my2", "mz2", "mx_re", "mx_im", "my_re", "my_im", "mz_re", "mz_im"};
    if (run.states.freeIon) columns.push_back("twiceM_j");
    std::vector<std::string> formats(columns.size(), "##0.00000");
    formats[0] = formats[1] = formats.back() = "";
    PropertyTable table(columns, formats);
    for (const auto& row : momentRows(run.states, moment, initial, first, last)) {
        std::string line = fmt::format("{:>3}", stateNumber(run, row.j));
        if (run.states.freeIon) line += fmt::format(" 2M={:>3}", run.states.states[row.j].twiceMu);
        for (int a = 0; a < 3; ++a) line += "  " + elementText(row.element(a), options.run);
        for (int a = 0; a < 3; ++a) line += "  " + propertyText(std::norm(row.element(a)), options.run, "##0.00000");
        log.appendLine(line);
        std::vector<SheetValue> values = {double(stateNumber(run, initial)), double(stateNumber(run, row.j))};
        for (int a = 0; a < 3; ++a) values.emplace_back(std::norm(row.element(a)));
        for (int a = 0; a < 3; ++a) values.insert(values.end(), {row.element(a).real(), row.element(a).imag()});
        if (run.states.freeIon) values.emplace_back(double(run.states.states[row.j].twiceMu));
        table.add(values);
    }
    writeTable(options.run, table);
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
    const auto moment = magneticMomentOperator(run.states, run.spinG);
    double curieTemperature = options.curie.value_or(0.0);
    if (options.curie && curieTemperature <= 0.0) curieTemperature = 0.001;
    double highest = std::max(grid.back(), curieTemperature);
    for (const auto& point : measured) highest = std::max(highest, point.temperature);
    log.appendLine("Magnetic Susceptibility - Initial calculation in progress ... ");
    const auto table = susceptibilityTable(run.states, moment, highest);
    log.appendLine(spinGNote(run.spinG));
    log.appendLine("Magnetic Susceptibility results (unit: emu/mol)");
    log.appendLine("Temperature/K  X(Average)    X(x)          X(y)          X(z)");
    PropertyTable results({"T", "chi_x", "chi_y", "chi_z", "chi_avg"});
    std::vector<SusceptibilityPoint> points;
    for (double t : grid) {
        const auto point = susceptibilityAt(table, t);
        log.appendLine(fmt::format("{}  {}  {}  {}  {}", formatNumber(t, "##0.0000"), chiText(point.average(), &options.run),
                                   chiText(point.chi[0], &options.run), chiText(point.chi[1], &options.run), chiText(point.chi[2], &options.run)));
        results.add({t, point.chi[0], point.chi[1], point.chi[2], point.average()});
        points.push_back(point);
    }
    if (options.curie) {
        const auto point = susceptibilityAt(table, curieTemperature);
        const double t = curieTemperature;
        log.appendLine("Curie Constant at T = " + formatNumber(t, "##0.0000") + " K");
        log.appendLine("Curie Constant C (K*emu/mol): C(Average)   C(x)   C(y)    C(z)");
        log.appendLine(fmt::format("{}  {}  {}  {}", chiText(curieConstant(point.average(), t), &options.run),
                                   chiText(curieConstant(point.chi[0], t), &options.run), chiText(curieConstant(point.chi[1], t), &options.run),
                                   chiText(curieConstant(point.chi[2], t), &options.run)));
        log.appendLine("Effective moment (Bohr magneton): mu   mu(x)   mu(y)   mu(z)");
        log.appendLine(fmt::format("{}  {}  {}  {}", propertyText(effectiveMoment(point.average(), t), options.run, "#0.000000"),
                                   propertyText(effectiveMoment(point.chi[0], t), options.run, "#0.000000"),
                                   propertyText(effectiveMoment(point.chi[1], t), options.run, "#0.000000"),
                                   propertyText(effectiveMoment(point.chi[2], t), options.run, "#0.000000")));
    }
    if (!measured.empty()) {
        log.appendLine("Measured and calculated X(Average) (unit: emu/mol)");
        log.appendLine("Temperature/K  measured      calculated");
        for (const auto& point : measured)
            log.appendLine(fmt::format("{}  {}  {}", formatNumber(point.temperature, "##0.0000"), chiText(point.average, &options.run),
                                       chiText(susceptibilityAt(table, point.temperature).average(), &options.run)));
    }
    const auto exported = susceptibilitySheet(points, formatDate(localNow()));
    writeTable(options.run, results, &exported);
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

RefractiveIndex refractiveIndexOf(const IntensityOptions& options) {
    RefractiveIndex index;
    index.constant = options.index;
    if (!options.host.empty()) {
        index.sellmeier = sellmeierForHost(options.host);
        if (!index.sellmeier) {
            std::string known;
            for (const auto& name : knownSellmeierHosts()) known += " " + name;
            throw UserError("Error in Main", "--host " + options.host + ": no Sellmeier set; known hosts:" + known);
        }
    } else if (!options.sellmeier.empty()) {
        if (options.sellmeier.size() % 2 != 0)
            throw UserError("Error in Main", "--sellmeier takes pairs \"B1 C1 B2 C2 ...\" (C in um^2)");
        SellmeierSet set;
        for (std::size_t i = 0; i < options.sellmeier.size(); i += 2)
            set.terms.emplace_back(options.sellmeier[i], options.sellmeier[i + 1]);
        index.sellmeier = set;
    }
    return index;
}

void intensitiesCommand(const IntensityOptions& options) {
    auto& log = reportLog(options.range.run);
    const auto run = runForProperties(options.range.run, log);
    const int initial = stateIndex(run, options.range.initial, "--initial");
    const auto [first, last] = rangeOf(run, options.range.range);
    IntensityInput input;
    input.omega = {options.omega[0], options.omega[1], options.omega[2]};
    input.index = refractiveIndexOf(options);
    input.radiusSquared = options.radiusSquared;
    const auto operators = intensityOperators(run.states, run.spinG);
    std::vector<TransitionLine> lines;
    try {
        lines = transitionLines(run.states, operators, initial, first, last, input);
    } catch (const RefractiveIndexError& error) {
        log.appendLine(error.what());
        throw UserError("Error in Main", "no refractive index at " + formatNumber(error.wavelength(), "#0.0") + " nm");
    }
    log.appendLine(spinGNote(run.spinG));
    log.appendLine(fmt::format("Omega(2,4,6) = {} {} {} (1E-20 cm^2); <r^2> = {} a0^2 for A(EQ)", options.omega[0],
                               options.omega[1], options.omega[2], options.radiusSquared));
    double population = 1.0;
    if (options.temperature) {
        population = levelPopulation(run.states, run.states.states[initial].level, *options.temperature);
        log.appendLine("Population of the initial level " + formatNumber(population, "#0.00000") + "; W/s^-1 (T=" +
                       formatNumber(*options.temperature, "##0.0000") + ") = population x A");
    }
    log.appendLine("State@Energy      lambda /nm   k/cm^-1  S(ED) calc.  A(ED) /s^-1  S(MD) /E-8*D^2  D(MD) /E-8*D^2  "
                   "f(MD) /E-8  A(MD) /s^-1  A(EQ) /s^-1  Atotal /s^-1");
    PropertyTable table({"initial", "final", "wavenumber", "U2", "U4", "U6", "S_ED", "A_ED", "MD2", "S_MD", "f_MD", "A_MD",
                         "A_EQ", "S_ED_sigma", "S_ED_pi", "MD2_sigma", "MD2_pi"});
    double emissionSum = 0.0;
    for (const auto& line : lines) {
        const double total = line.rateED + line.rateMD + line.rateEQ;
        const bool emission = run.states.states[line.final].energy < run.states.states[initial].energy;
        if (emission) emissionSum += total;
        std::string text = fmt::format("{:>4}@{}  {}  {}  {}  {}  {}  {}  {}  {}  {}  {}", stateNumber(run, line.final),
                                       formatNumber(run.states.relativeEnergy(line.final), "#####0.0"),
                                       formatNumber(line.wavelength, "####0.000"), formatNumber(line.wavenumber, "####0.000"),
                                       formatNumber(line.strengthED, "#0.0000"), chiText(line.rateED),
                                       formatNumber(line.strengthMD, "###0.000"), formatNumber(line.dipoleMD, "###0.000"),
                                       formatNumber(line.oscillatorMD * 1e8, "#0.0000"), chiText(line.rateMD),
                                       chiText(line.rateEQ), chiText(total));
        if (options.temperature && emission) text += "  W=" + chiText(population * total);
        log.appendLine(text);
        if (line.strengthED > 0.0)
            log.appendLine("      S(ED) = " + formatNumber(line.strengthED, "#0.0000") + ": Parallel sigma " +
                           formatNumber(line.strengthEDSigma, "#0.0000") + ", Perp. pi " +
                           formatNumber(line.strengthEDPi, "#0.0000"));
        if (line.magneticSquare > 0.0)
            log.appendLine("      MD2 = " + formatNumber(line.magneticSquare, "#0.00000") + ": Parallel sigma " +
                           formatNumber(line.magneticSigma, "#0.00000") + ", Perp. pi " +
                           formatNumber(line.magneticPi, "#0.00000"));
        std::vector<SheetValue> values = {double(stateNumber(run, initial)), double(stateNumber(run, line.final)),
                                          line.wavenumber};
        for (double v : line.unitSquares) values.emplace_back(v);
        for (double v : {line.strengthED, line.rateED, line.magneticSquare, line.strengthMD, line.oscillatorMD,
                         line.rateMD, line.rateEQ, line.strengthEDSigma, line.strengthEDPi, line.magneticSigma,
                         line.magneticPi})
            values.emplace_back(v);
        table.add(values);
    }
    if (emissionSum > 0.0)
        log.appendLine("tau(rad) /ms = " + formatNumber(1000.0 / emissionSum, "#0.00000") +
                       " (emission to the listed lower levels)");
    writeTable(options.range.run, table);
}

// ---- jo-fit ----
struct JuddOfeltOptions {
    PropertyRunOptions run;
    std::string measured;
};

void juddOfeltCommand(const JuddOfeltOptions& options) {
    auto& log = reportLog(options.run);
    const auto run = runForProperties(options.run, log);
    const auto numbered = numberedStates(run);
    const auto lines = readMeasuredLines(options.measured, static_cast<int>(numbered.size()));
    const auto operators = intensityOperators(run.states, run.spinG);
    std::vector<JuddOfeltObservation> observations;
    std::map<int, Eigen::MatrixXd> fromLevel;
    for (const auto& line : lines) {
        const int level = run.states.states[numbered[line.initial - 1]].level;
        if (!fromLevel.contains(level)) fromLevel.emplace(level, lineSquaresFrom(run.states, operators, level));
        JuddOfeltObservation o;
        for (int member : run.states.levelMembers(run.states.states[numbered[line.final - 1]].level))
            for (int k = 0; k < 3; ++k) o.unitSquares[k] += fromLevel.at(level)(member, k);
        o.measured = line.strength;
        o.uncertainty = line.uncertainty;
        observations.push_back(o);
    }
    const auto fit = fitJuddOfelt(observations);
    log.appendLine("Correlation matrix and values of Judd-Ofelt parameters (1E-20 cm^2) for " + run.set.title);
    const char* names[] = {"Omega2", "Omega4", "Omega6"};
    PropertyTable table({"parameter", "value", "uncertainty", "corr2", "corr4", "corr6"},
                        {"", "##0.0##", "##0.0##", "#0.0###", "#0.0###", "#0.0###"});
    for (int a = 0; a < 3; ++a) {
        std::string text = fmt::format("{:<8}", names[a]);
        for (int b = 0; b < 3; ++b) text += " " + formatNumber(fit.correlation(a, b), "#0.0###");
        const double sigma = std::sqrt(std::max(0.0, fit.covariance(a, a)));
        text += "   " + formatNumber(fit.omega[a], "##0.0##") + " +- " + formatNumber(sigma, "##0.0##");
        log.appendLine(text);
        table.add({names[a], fit.omega[a], sigma, fit.correlation(a, 0), fit.correlation(a, 1), fit.correlation(a, 2)});
    }
    log.appendLine("rms deviation (1E-20 cm^2) = " + formatNumber(fit.rms, "##0.0###"));
    writeTable(options.run, table);
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
