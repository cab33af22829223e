#include "interactive/property_reports.hpp"

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>

#include <fmt/format.h>

#include "core/number_format.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"
#include "properties/g_factors.hpp"
#include "properties/magnetic_moment.hpp"
#include "properties/state_composition.hpp"
#include "properties/susceptibility_sheet.hpp"

namespace orvane {
namespace {

// Scientific for small magnitudes, fixed otherwise (or the accuracy's places).
std::string chiText(double value, const PropertyRunOptions* options = nullptr) {
    if (options && !options->accuracy.empty()) return propertyText(value, *options, "");
    return std::abs(value) < 0.001 && value != 0.0 ? formatNumber(value, "0.0000e+##") : formatNumber(value, "#0.000000");
}

// The g-factor table's columns and their formats (g values "#0.00000").
const std::vector<std::string> kGFactorFormats = {"", "", "######0.0000", "#0.00000", "#0.00000", "#0.00000",
                                                  "##0.00", "##0.00", "##0.00", "#0.00000", "#0.00000"};

// Free ion: g_J = <J J|m_z|J J> / J of every multiplet with J > 0.
PropertyTable freeIonGFactors(const PropertyRun& run, const TensorOperator& moment, const PropertyRunOptions& options,
                              LogBook& log) {
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
    return table;
}

std::string elementText(std::complex<double> value, const PropertyRunOptions& options) {
    const auto text = [&](double v) { return propertyText(v, options, "##0.00000"); };
    if (std::abs(value.imag()) < 5e-6) return text(value.real());
    if (std::abs(value.real()) < 5e-6) return text(value.imag()) + "i";
    return text(value.real()) + (value.imag() >= 0 ? " +" : " ") + std::string(trim(text(value.imag()))) + "i";
}

// The four values (average, x, y, z) of a per-axis quantity on one line.
std::string axesLine(const SusceptibilityPoint& point, const std::function<std::string(double)>& text) {
    return fmt::format("{}  {}  {}  {}", text(point.average()), text(point.chi[0]), text(point.chi[1]),
                       text(point.chi[2]));
}

}  // namespace

std::string spinGNote(double spinG) { return "Magnetic moment mu = -muB (L + gs S), gs = " + fmt::format("{:.10g}", spinG); }

PropertyTable stateCompositionReport(const PropertyRun& run, const std::vector<int>& states, double minComponent,
                                     bool complex, LogBook& log) {
    PropertyTable table({"state", "energy", "component", "re", "im"}, {"", "######0.0000", "", "#0.00000", "#0.00000"});
    for (int i : states) {
        const auto composition = stateComposition(run.states, i, minComponent);
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
    return table;
}

std::vector<std::pair<int, int>> doubletsOfStates(const PropertyRun& run, const std::vector<int>& numbers) {
    const auto pairs = pairDoublets(run.states);
    std::vector<std::pair<int, int>> wanted;
    for (int number : numbers) {
        const int i = stateIndex(run, number, "--states");
        const auto found = std::find_if(pairs.begin(), pairs.end(), [i](const auto& p) { return p.first == i || p.second == i; });
        if (found == pairs.end()) throw UserError("Error in Main", fmt::format("state {} is not part of a doublet", number));
        if (std::find(wanted.begin(), wanted.end(), *found) == wanted.end()) wanted.push_back(*found);
    }
    return wanted;
}

PropertyTable gFactorReport(const PropertyRun& run, const std::vector<std::pair<int, int>>& doublets,
                            const PropertyRunOptions& options, LogBook& log) {
    const auto moment = magneticMomentOperator(run.states, run.spinG);
    if (run.states.freeIon) return freeIonGFactors(run, moment, options, log);
    const bool quasi = !run.states.kramers();
    log.appendLine(spinGNote(run.spinG));
    std::vector<std::string> columns = {"first", "second", "energy", "gx", "gy", "gz", "alpha", "beta", "gamma"};
    if (quasi) columns.insert(columns.end(), {"gz1", "gz2"});
    PropertyTable table(columns, kGFactorFormats);
    for (const auto& [first, second] : doublets) {
        const auto g = doubletGFactors(run.states, moment, first, second);
        const double energy = run.states.relativeEnergy(first);
        log.appendLine(fmt::format("g values for states # {} and {} ({} cm-1)", first + 1, second + 1,
                                   formatNumber(energy, "######0.0000")));
        const auto text = [&](double v) { return propertyText(v, options, "#0.0000"); };
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
    return table;
}

PropertyTable momentReport(const PropertyRun& run, int initial, int first, int last, const PropertyRunOptions& options,
                           LogBook& log) {
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
        for (int a = 0; a < 3; ++a) line += "  " + elementText(row.element(a), options);
        for (int a = 0; a < 3; ++a) line += "  " + propertyText(std::norm(row.element(a)), options, "##0.00000");
        log.appendLine(line);
        std::vector<SheetValue> values = {double(stateNumber(run, initial)), double(stateNumber(run, row.j))};
        for (int a = 0; a < 3; ++a) values.emplace_back(std::norm(row.element(a)));
        for (int a = 0; a < 3; ++a) values.insert(values.end(), {row.element(a).real(), row.element(a).imag()});
        if (run.states.freeIon) values.emplace_back(double(run.states.states[row.j].twiceMu));
        table.add(values);
    }
    return table;
}

SusceptibilityReport susceptibilityReport(const PropertyRun& run, const std::vector<double>& grid,
                                          std::optional<double> curie,
                                          const std::vector<MeasuredSusceptibility>& measured,
                                          const PropertyRunOptions& options, LogBook& log) {
    const auto moment = magneticMomentOperator(run.states, run.spinG);
    double highest = std::max(grid.empty() ? 0.0 : grid.back(), curie.value_or(0.0));
    for (const auto& point : measured) highest = std::max(highest, point.temperature);
    log.appendLine("Magnetic Susceptibility - Initial calculation in progress ... ");
    const auto table = susceptibilityTable(run.states, moment, highest);
    const auto chi = [&](double v) { return chiText(v, &options); };
    log.appendLine(spinGNote(run.spinG));
    log.appendLine("Magnetic Susceptibility results (unit: emu/mol)");
    log.appendLine("Temperature/K  X(Average)    X(x)          X(y)          X(z)");
    SusceptibilityReport report;
    for (std::size_t k = 0; k < grid.size(); ++k) {
        const double t = grid[k];
        log.progress(LogCategory::General,
                     "Magnetic Susceptibility Calculation in Progress - Temperature =" + formatNumber(t, "##0.0000"),
                     static_cast<int>(k + 1), static_cast<int>(grid.size()));
        const auto point = susceptibilityAt(table, t);
        log.appendLine(formatNumber(t, "##0.0000") + "  " + axesLine(point, chi));
        report.results.add({t, point.chi[0], point.chi[1], point.chi[2], point.average()});
        report.points.push_back(point);
    }
    if (curie) {
        const double t = *curie;
        auto point = susceptibilityAt(table, t);
        log.appendLine("Curie Constant at T = " + formatNumber(t, "##0.0000") + " K");
        log.appendLine("Curie Constant C (K*emu/mol): C(Average)   C(x)   C(y)    C(z)");
        log.appendLine(axesLine(point, [&](double v) { return chi(curieConstant(v, t)); }));
        log.appendLine("Effective moment (Bohr magneton): mu   mu(x)   mu(y)   mu(z)");
        log.appendLine(axesLine(point, [&](double v) { return propertyText(effectiveMoment(v, t), options, "#0.000000"); }));
    }
    if (!measured.empty()) {
        log.appendLine("Measured and calculated X(Average) (unit: emu/mol)");
        log.appendLine("Temperature/K  measured      calculated");
        for (const auto& point : measured)
            log.appendLine(fmt::format("{}  {}  {}", formatNumber(point.temperature, "##0.0000"), chi(point.average),
                                       chi(susceptibilityAt(table, point.temperature).average())));
    }
    report.exported = susceptibilitySheet(report.points, formatDate(localNow()));
    return report;
}

std::vector<std::string> transitionCells(const PropertyRun& run, const TransitionLine& line) {
    const double total = line.rateED + line.rateMD + line.rateEQ;
    return {fmt::format("{:>4}@{}", stateNumber(run, line.final), formatNumber(run.states.relativeEnergy(line.final), "#####0.0")),
            formatNumber(line.wavelength, "####0.000"),
            formatNumber(line.wavenumber, "####0.000"),
            formatNumber(line.strengthED, "#0.0000"),
            chiText(line.rateED),
            formatNumber(line.strengthMD, "###0.000"),
            formatNumber(line.dipoleMD, "###0.000"),
            formatNumber(line.oscillatorMD * 1e8, "#0.0000"),
            chiText(line.rateMD),
            chiText(line.rateEQ),
            chiText(total)};
}

RefractiveIndex refractiveIndexOf(const std::string& host, const std::vector<double>& sellmeierPairs, double constant) {
    RefractiveIndex index;
    index.constant = constant;
    if (!host.empty()) {
        index.sellmeier = sellmeierForHost(host);
        if (!index.sellmeier) {
            std::string known;
            for (const auto& name : knownSellmeierHosts()) known += " " + name;
            throw UserError("Error in Main", "--host " + host + ": no Sellmeier set; known hosts:" + known);
        }
    } else if (!sellmeierPairs.empty()) {
        if (sellmeierPairs.size() % 2 != 0)
            throw UserError("Error in Main", "--sellmeier takes pairs \"B1 C1 B2 C2 ...\" (C in um^2)");
        SellmeierSet set;
        for (std::size_t i = 0; i < sellmeierPairs.size(); i += 2) set.terms.emplace_back(sellmeierPairs[i], sellmeierPairs[i + 1]);
        index.sellmeier = set;
    }
    return index;
}

IntensityReport intensityReport(const PropertyRun& run, int initial, int first, int last,
                                const IntensityRequest& request, LogBook& log) {
    const auto operators = intensityOperators(run.states, run.spinG);
    IntensityReport report{{}, PropertyTable({"initial", "final", "wavenumber", "U2", "U4", "U6", "S_ED", "A_ED", "MD2",
                                              "S_MD", "f_MD", "A_MD", "A_EQ", "S_ED_sigma", "S_ED_pi", "MD2_sigma",
                                              "MD2_pi"})};
    try {
        report.lines = transitionLines(run.states, operators, initial, first, last, request.input);
    } catch (const RefractiveIndexError& error) {
        log.appendLine(error.what());
        throw UserError("Error in Main", "no refractive index at " + formatNumber(error.wavelength(), "#0.0") + " nm");
    }
    const auto& omega = request.input.omega;
    log.appendLine(spinGNote(run.spinG));
    log.appendLine(fmt::format("Omega(2,4,6) = {} {} {} (1E-20 cm^2); <r^2> = {} a0^2 for A(EQ)", omega[0], omega[1],
                               omega[2], request.input.radiusSquared));
    double population = 1.0;
    if (request.temperature) {
        population = levelPopulation(run.states, run.states.states[initial].level, *request.temperature);
        log.appendLine("Population of the initial level " + formatNumber(population, "#0.00000") + "; W/s^-1 (T=" +
                       formatNumber(*request.temperature, "##0.0000") + ") = population x A");
    }
    log.appendLine("State@Energy      lambda /nm   k/cm^-1  S(ED) calc.  A(ED) /s^-1  S(MD) /E-8*D^2  D(MD) /E-8*D^2  "
                   "f(MD) /E-8  A(MD) /s^-1  A(EQ) /s^-1  Atotal /s^-1");
    double emissionSum = 0.0;
    for (const auto& line : report.lines) {
        const double total = line.rateED + line.rateMD + line.rateEQ;
        const bool emission = run.states.states[line.final].energy < run.states.states[initial].energy;
        if (emission) emissionSum += total;
        std::string text;
        for (const auto& cell : transitionCells(run, line)) text += (text.empty() ? "" : "  ") + cell;
        if (request.temperature && emission) text += "  W=" + chiText(population * total);
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
        report.table.add(values);
    }
    if (emissionSum > 0.0)
        log.appendLine("tau(rad) /ms = " + formatNumber(1000.0 / emissionSum, "#0.00000") +
                       " (emission to the listed lower levels)");
    return report;
}

PropertyTable juddOfeltReport(const PropertyRun& run, const std::vector<MeasuredLine>& lines, LogBook& log) {
    const auto numbered = numberedStates(run);
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
    return table;
}

}  // namespace orvane
