// orvane fit FILE.par --observed LEVELS: least-squares fit of the parameter
// file's free-ion and crystal-field parameters to observed levels
// (docs/fitting.md). Prints the cycle lines and the tables, writes the fitted
// parameter file (the input's layout with the fitted values and the fit
// section) and, with --csv or --xlsx, the level table; --parameters-xlsx
// writes the fitted values as a "Parameter"/"Value" sheet, which --values
// reads as start values (docs/spreadsheets.md). Ctrl-C stops between cycles
// and keeps the best parameters seen.
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "cli/break_request.hpp"
#include "cli/commands.hpp"
#include "cli/terminal_log_book.hpp"
#include "cli/exit_code.hpp"
#include "cli/fit_inputs.hpp"
#include "cli/property_run.hpp"
#include "core/atomic_file.hpp"
#include "core/log_book.hpp"
#include "core/number_format.hpp"
#include "core/user_error.hpp"
#include "engine/parameter_file.hpp"
#include "fit/fit_errors.hpp"
#include "fit/fit_parameters.hpp"
#include "fit/fit_session.hpp"
#include "fit/fit_tables.hpp"
#include "fit/observed_levels_file.hpp"
#include "fit/observed_levels_sheet.hpp"
#include "fit/parameter_sheet.hpp"
#include "fit/ultimate_fit.hpp"
#include "interactive/command_line_asker.hpp"
#include "interactive/fit_dialogs.hpp"
#include "interactive/fit_runs.hpp"
#include "tables/table_directory.hpp"

namespace orvane::cli {
namespace {

struct FitOptions {
    std::string file;
    std::string observed;
    std::string sheet;   // the workbook sheet of the observed levels ("" the first)
    std::string values;  // a "Parameter"/"Value" sheet of start values
    std::string grasp;
    bool graspZero = false;
    std::vector<std::string> free, fix, link;
    int cycles = 1;
    bool ultimate = false;
    bool eavOnly = false;
    double scale = 1.0;
    bool autoMatch = false;
    bool errors = false;
    bool correlations = false;
    std::string csv;
    std::string xlsx;
    std::string parametersXlsx;
    std::string gFactorsXlsx;
    std::string output;
    bool complex = false;
    bool freeIon = false;
    std::string tableDirectory;
    int maxLevels = 0;
    double convergence = 0.01;
    int maxIterations = 30;
    bool yes = false;
    bool functions = false;
    std::string errorMethod = "discrepancies";
    double energyError = 1.0;
    std::string correlation;  // "", fix, free, internal, cf
};

FitWorkspace workspaceOf(const ParameterSet& set, const FitOptions& options) {
    FitWorkspace workspace;
    workspace.parameterFileName = std::filesystem::path(options.file).filename().string();
    workspace.kind = fitKindOf(options.freeIon, options.complex);
    workspace.parameters = fitParameterRows(set, workspace.kind);
    for (const auto& name : options.free) setFitOption(workspace.parameters, trim(name), kFitOptionFree);
    for (const auto& name : options.fix) setFitOption(workspace.parameters, trim(name), kFitOptionFixed);
    for (const auto& pair : options.link) {
        const auto equals = pair.find('=');
        if (equals == std::string::npos)
            throw UserError("Error in fitting", "--link takes NAME=MASTER, not \"" + pair + "\"");
        setFitOption(workspace.parameters, trim(pair.substr(0, equals)), kFitOptionLinked, trim(pair.substr(equals + 1)));
    }
    if (!options.grasp.empty()) {
        CommandLineAsker asker(std::cerr, {}, {options.graspZero ? Choice::Yes : Choice::No});
        workspace.levels = *askGraspObservedLevels(asker, options.grasp);
    } else {
        auto observed = readObservedLevelsFile(observedLevelsPath(options.observed), options.sheet);
        workspace.levels = std::move(observed.levels);
        workspace.gFactors = std::move(observed.gFactors);
    }
    if (!options.correlation.empty()) {
        const auto handling = options.correlation == "free"       ? CorrelationFitHandling::FreeAll
                              : options.correlation == "internal" ? CorrelationFitHandling::InternalLink
                              : options.correlation == "cf"       ? CorrelationFitHandling::LinkWithCrystalField
                                                                  : CorrelationFitHandling::FixAll;
        workspace.settings.correlation = handling;
        applyCorrelationHandling(workspace.parameters, handling);
    }
    auto& s = workspace.settings;
    s.scalingFactor = options.scale;
    s.errorMethod = options.errorMethod == "experimental" ? FitErrorMethod::ExperimentalErrors
                                                           : FitErrorMethod::Discrepancies;
    s.observedEnergyError = options.energyError;
    s.autoMatch = options.autoMatch;
    s.computeFitErrors = options.errors || options.correlations;
    s.maxLevels = options.maxLevels;
    s.convergenceLimit = options.convergence;
    s.maxIterations = options.maxIterations;
    return workspace;
}

void printLines(LogBook& log, const std::vector<std::string>& lines) {
    for (const auto& line : lines) log.appendLine(line);
}

void fitParameterFile(const FitOptions& options) {
    TerminalLogBook log(LogRole::Narration);
    auto set = readParameterFileForRun(options.file);
    if (!options.values.empty()) set = withSheetParameterValues(set, Spreadsheet::open(options.values));
    auto workspace = workspaceOf(set, options);
    CommandLineAsker asker(std::cerr, {}, options.yes ? std::vector{Choice::Yes, Choice::Yes} : std::vector<Choice>{});
    if (!options.eavOnly) {
        const auto outcome = checkFitSetup(workspace, {false, hasImaginaryCrystalField(set)});
        if (!confirmFitCycle(outcome, asker, log)) throw UserError("Error in fitting", "The fit was not run.");
    }
    log.appendLine(fitTitle(workspace));
    const auto tables = options.tableDirectory.empty() ? defaultTableDirectory()
                                                       : std::filesystem::path(options.tableDirectory);
    FitSession session(set, std::move(workspace), tables, log);
    session.update();
    const auto statesConsidered = session.evaluation().energies.size();
    for (const auto& level : session.workspace().levels)
        if (static_cast<std::size_t>(level.stateNumber) > statesConsidered)
            log.appendLine(fmt::format("State number {} of the level at {} is beyond the {} states considered: it is "
                                       "not compared (see --max-levels).",
                                       level.stateNumber, level.observedEnergy, statesConsidered));
    log.appendLine(fmt::format("Start: RMS Dev. = {:.4f}, S.E. = {:.4f}", session.workspace().rmsDeviation,
                               session.workspace().standardError));
    {
        BreakRequest breaks;
        const FitStopRequest stop = [&breaks] { return breaks.requested(); };
        if (options.eavOnly)
            printLines(log, session.fitEavOnly());
        else if (options.ultimate)
            runUltimateFitLogged(session, stop, log);
        else
            runFitCycles(session, options.cycles, stop, log);
    }
    if (session.workspace().settings.computeFitErrors) {
        const auto errors = computeFitErrors(session);
        applyLevelErrors(session.workspace(), errors);
        printLines(log, fitErrorReport(session, errors, options.correlations));
    }
    log.progress(LogCategory::Fit, "Ultimate Fit cycles", 1, 1);  // the bar ends with the series
    // The fit's result: printed also under --quiet.
    TerminalLogBook report(LogRole::Results);
    const auto& result = session.workspace();
    if (options.functions) logFitFunctions(session, report);
    printLines(report, parameterTableLines(result));
    printLines(report, levelTableLines(result));
    printLines(report, gFactorTableLines(result));
    printLines(report, rmsLines(result));
    const auto output = options.output.empty() ? besideInput(options.file, "_fit") : std::filesystem::path(options.output);
    writeParameterFile(output, withFittedValues(set, result.parameters));
    report.appendLine("Fitted parameters: " + output.string());
    if (!options.csv.empty()) writeFileAtomically(options.csv, levelTableCsv(result));
    const std::string date = formatDate(localNow());
    if (!options.xlsx.empty()) observedLevelsSheet(result.levels, result.gFactors, date, true).save(options.xlsx);
    if (!options.parametersXlsx.empty()) fittedParameterSheet(result.parameters, date).save(options.parametersXlsx);
    if (!options.gFactorsXlsx.empty()) gFactorTableSheet(result.gFactors, date).save(options.gFactorsXlsx);
}

}  // namespace

void addFitCommand(CLI::App& app) {
    auto* command = app.add_subcommand("fit", "Least-squares fit of a parameter file to observed levels");
    auto options = std::make_shared<FitOptions>();
    command->add_option("FILE", options->file, "parameter file (.par)")->required();
    auto* observed = command->add_option(
        "--observed", options->observed,
        "observed levels: a text file (docs/observed-levels-file.md) or a .xlsx/.csv sheet with \"State Label\" and "
        "\"Obs.Energy\" (docs/spreadsheets.md); default: defaulteng.txt beside the program");
    command->add_option("--sheet", options->sheet, "the sheet of an --observed workbook (default: the first)");
    command->add_option("--values", options->values,
                        "start values from a .xlsx/.csv sheet with \"Parameter\" and \"Value\" (docs/spreadsheets.md)");
    command->add_option("--grasp", options->grasp, "free-ion energies from a GRASP2K level listing as observed levels")
        ->excludes(observed);
    command->add_flag("--grasp-zero", options->graspZero, "the lowest GRASP2K energy becomes the zero of energy");
    command->add_option("--free", options->free, "parameters to fit (F2, ZETA, B43, ImB43, ...)")->delimiter(',');
    command->add_option("--fix", options->fix, "parameters to keep fixed")->delimiter(',');
    command->add_option("--link", options->link, "NAME=MASTER: NAME moves with MASTER by their ratio")->delimiter(',');
    auto* cycles = command->add_option("--cycles", options->cycles, "number of fit cycles (default 1)")
                       ->check(CLI::Range(1, 100000));
    auto* ultimate = command->add_flag("--ultimate", options->ultimate, "cycles until the RMS deviation settles");
    auto* eav = command->add_flag("--eav-only", options->eavOnly, "move EAVG only (Fit for Eav only)");
    cycles->excludes(ultimate);
    eav->excludes(ultimate)->excludes(cycles);
    command->add_option("--scale", options->scale, "factor on every step (default 1)")
        ->check(kFiniteNumber)
        ->check(CLI::PositiveNumber);
    command->add_flag("--automatch", options->autoMatch, "re-assign state numbers by their labels before each cycle");
    command->add_flag("--errors", options->errors, "fit errors of the parameters and levels");
    command->add_flag("--correlations", options->correlations, "fit errors and the correlation coefficients");
    command->add_option("--csv", options->csv, "also write the level table as CSV to FILE");
    command->add_option("--xlsx", options->xlsx, "also write the level table as .xlsx to FILE (readable by --observed)");
    command->add_option("--parameters-xlsx", options->parametersXlsx,
                        "also write the fitted parameters as .xlsx to FILE (readable by --values)");
    command->add_option("--gfactors-xlsx", options->gFactorsXlsx, "also write the g-factor table as .xlsx to FILE");
    command->add_option("-o,--output", options->output, "fitted parameter file (default FILE_fit.par)");
    auto* freeIon = command->add_flag("--free-ion", options->freeIon, "fit free-ion levels (J-multiplets)");
    command->add_flag("--complex", options->complex, "complex crystal field (Im Bkq fitted too)")->excludes(freeIon);
    command->add_option("--tables", options->tableDirectory, "table directory (default: the delivered one)");
    command->add_option("--max-levels", options->maxLevels, "different levels to consider (0 = all, default)")
        ->check(CLI::NonNegativeNumber);
    command->add_option("--convergence", options->convergence, "Ultimate Fit: limit on the RMS change (default 0.01)")
        ->check(kFiniteNumber)
        ->check(CLI::PositiveNumber);
    command->add_option("--max-iterations", options->maxIterations, "Ultimate Fit: cycle limit, 0 none (default 30)")
        ->check(CLI::NonNegativeNumber);
    command->add_flag("--yes", options->yes, "answer yes to the questions before the fit");
    command->add_option("--error-method", options->errorMethod,
                        "errors from the discrepancies (S.E., default) or from --energy-error (experimental)")
        ->check(CLI::IsMember({"discrepancies", "experimental"}));
    command->add_option("--energy-error", options->energyError,
                        "uncertainty of each observed energy, for \"Error (based on input)\" (default 1)")
        ->check(kFiniteNumber)
        ->check(CLI::PositiveNumber);
    command->add_flag("--functions", options->functions,
                      "also print the average and SD of all energies, the crystal-field invariants, the "
                      "electrostatic strength and the orthonormalised electrostatic parameters");
    command->add_option("--ccf", options->correlation,
                        "correlation crystal-field rows: fix, free, internal (linked to the first of their kind) or "
                        "cf (linked to B(k,q))")
        ->check(CLI::IsMember({"fix", "free", "internal", "cf"}));
    command->callback([options] { runPropertyCommand([&] { fitParameterFile(*options); }); });
}

}  // namespace orvane::cli
