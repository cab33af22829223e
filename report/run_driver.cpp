#include "report/run_driver.hpp"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <map>
#include <sstream>
#include <memory>
#include <optional>
#include <ostream>
#include <vector>

#include <fmt/format.h>

#include "core/atomic_file.hpp"
#include "core/number_format.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"
#include "core/version.hpp"
#include "engine/barycentre_shift.hpp"
#include "report/energy_file.hpp"
#include "engine/energy_levels.hpp"
#include "engine/engine_errors.hpp"
#include "engine/free_ion_contributions.hpp"
#include "report/general_output.hpp"
#include "engine/j_multiplet_elements.hpp"
#include "engine/editor_checks.hpp"
#include "engine/level_symmetry.hpp"
#include "engine/parameter_file.hpp"
#include "engine/run_switches.hpp"
#include "report/state_vector_file.hpp"
#include "params/cf_invariants.hpp"

namespace orvane {

namespace {

constexpr ErrorCategory kMainError = ErrorCategory::Main;
constexpr const char* kTransformedLine = "Storing transformed reduced matrix elements";
constexpr const char* kMatrixStart = "### Hamiltonian matrix elements of dim = ";
constexpr const char* kComplexMatrixStart = "### Complex Hamiltonian matrix elements ";
constexpr const char* kMatrixEnd = "### End of Hamiltonian matrix elements ###";

// Lines into a result file's stream, without flushing each line (the general
// output of a large run has about a million lines).
class BufferedStreamLogBook final : public LogBook {
public:
    explicit BufferedStreamLogBook(std::ostream& out) : out_(out) {}
    void record(const LogEvent& event) override {
        if (!isPrintedEvent(event)) return;
        out_.write(event.text.data(), static_cast<std::streamsize>(event.text.size()));
        out_.put('\n');
    }
    void appendBlock(std::string_view lines, LogCategory) override {
        out_.write(lines.data(), static_cast<std::streamsize>(lines.size()));
        out_.put('\n');
    }

private:
    std::ostream& out_;
};

// Progress lines: into the general output and the caller's log book.
class TeeLogBook final : public LogBook {
public:
    TeeLogBook(LogBook& first, LogBook& second) : first_(first), second_(second) {}
    void record(const LogEvent& event) override {
        first_.record(event);
        second_.record(event);
    }

private:
    LogBook& first_;
    LogBook& second_;
};

// One result file: written to a temporary file, renamed on commit; nothing for "nul:".
class ResultFile {
public:
    explicit ResultFile(const std::string& name) {
        if (!isNullOutputName(name)) writer_ = std::make_unique<AtomicFileWriter>(name);
    }
    bool wanted() const { return writer_ != nullptr; }
    std::ostream& stream() { return writer_->stream(); }
    AtomicFileWriter* writer() { return writer_.get(); }

private:
    std::unique_ptr<AtomicFileWriter> writer_;
};

struct EngineRun {
    EnergyLevelResult result;
    std::filesystem::path tableDirectory;  // where the tables were found
};

// Runs the engine; when the tables can neither be found nor generated, the
// environment is asked for another directory.
EngineRun runWithTables(const ParameterSet& set, const EnergyLevelOptions& options, RunEnvironment& environment,
                        LogBook& engineLog, ErrorCategory engineError) {
    auto directory = environment.tableDirectory;
    for (;;) {
        try {
            return {computeEnergyLevels(set, directory, engineLog, options), directory};
        } catch (const UserError& error) {
            if (error.category() != ErrorCategory::Tables) throw;
            const auto given = environment.tablesMissing ? environment.tablesMissing(error) : std::nullopt;
            if (!given)
                throw UserError(engineError, std::string("tables of reduced matrix elements unavailable: ") +
                                                 error.what());
            directory = *given;
        } catch (const std::exception& error) {
            throw UserError(engineError, error.what());
        }
    }
}

// The engine's progress lines in the order of the run, with the driver's own
// free-ion storing lines before the crystal-field stage. The "/printhm"
// listing goes to the general output only.
void replayEngineLog(const std::vector<std::string>& lines, LogBook& progress, LogBook& general,
                     const std::vector<std::string>& freeIonStoring) {
    bool storingWritten = false;
    bool inMatrix = false;
    for (const auto& line : lines) {
        if (line == kTransformedLine && !storingWritten) {
            for (const auto& storing : freeIonStoring) progress.appendLine(storing);
            storingWritten = true;
        }
        if (line.rfind(kMatrixStart, 0) == 0 || line.rfind(kComplexMatrixStart, 0) == 0) inMatrix = true;
        (inMatrix ? general : progress).appendLine(line);
        if (line.rfind(kMatrixEnd, 0) == 0) inMatrix = false;
    }
    if (!storingWritten)
        for (const auto& storing : freeIonStoring) progress.appendLine(storing);
}

std::array<double, 3> appliedInvariants(const EnergyLevelResult& result) {
    params::CfTable table;
    for (std::size_t i = 0; i < result.crystalFieldKeys.size(); ++i) {
        if (result.crystalFieldKeys[i].op != CrystalFieldOperator::Standard) continue;
        const double re = result.crystalFieldValues[i];
        const double im = i < result.crystalFieldImaginary.size() ? result.crystalFieldImaginary[i] : 0.0;
        table.rows.push_back({result.crystalFieldKeys[i].k, result.crystalFieldKeys[i].q,
                              {fmt::format("{}", re), re}, {fmt::format("{}", im), im}});
    }
    return params::computeInvariants(table, params::CfNormalisation::Wybourne).s;
}

// Every energy written (with the shift added) is finite and the levels ascend.
void requireAscending(const std::vector<ResultLevel>& levels, double shift) {
    for (std::size_t i = 0; i < levels.size(); ++i)
        if (!std::isfinite(levels[i].energy + shift))
            throw UserError(ErrorCategory::SortingEnergies,
                            fmt::format("the energy of level {} is not a finite number", i + 1));
    for (std::size_t i = 1; i < levels.size(); ++i)
        if (!(levels[i].energy >= levels[i - 1].energy))
            throw UserError(ErrorCategory::SortingEnergies,
                            fmt::format("level {} ({}) lies below level {} ({})", i + 1, levels[i].energy, i,
                                        levels[i - 1].energy));
}

// The user-defined notation of irreducible representations: lines
// "group Koster-label user-label" ("D3h G7 E1/2") of the file kUserIrrepFile
// beside the parameter file; a label without a line keeps its Koster name.
std::map<std::string, std::string> userIrrepNames(const std::filesystem::path& parameterFile, const std::string& group) {
    std::map<std::string, std::string> names;
    std::ifstream in(parameterFile.parent_path() / kUserIrrepFile);
    std::string line;
    while (std::getline(in, line)) {
        std::istringstream fields(line);
        std::string name, koster, user;
        if (fields >> name >> koster >> user && name == group) names[koster] = user;
    }
    return names;
}

// The irreducible representation of every crystal-field level under the
// group of "/ptgp= n", in the notation of "/IRnotation= n" (none for notation 4).
void attachIrreps(const EnergyLevelResult& result, const RunSwitches& switches,
                  const std::filesystem::path& parameterFile, std::vector<ResultLevel>& levels) {
    const auto site = siteLabellingOf(switches);
    if (!site || result.modelLevels.size() != levels.size()) return;
    const auto labels = levelIrrepLabels(*result.model, result.modelLevels, *site);
    const auto userNames = static_cast<IrNotation>(switches.irNotation) == IrNotation::UserDefined
                               ? userIrrepNames(parameterFile, site->group->name)
                               : std::map<std::string, std::string>{};
    for (std::size_t i = 0; i < levels.size(); ++i) {
        const auto user = userNames.find(labels[i]);
        levels[i].irrep = user != userNames.end() ? user->second : labels[i];
    }
}

std::string timeStamp() {
    const auto now = localNow();
    return formatDate(now) + " " + formatTime(now);
}

}  // namespace

RunOutcome runEngine(int mode, std::filesystem::path parameterFile, RunRequest request, RunEnvironment& environment) {
    RunOutcome outcome;
    outcome.kind = runKindOfMode(mode);
    const bool freeIon = isFreeIonRun(outcome.kind);
    const bool complex = outcome.kind == RunKind::ComplexCrystalField;
    const ErrorCategory engineError = complex ? kComplexEngineError : kRealEngineError;
    auto& settings = environment.settings;
    if (parameterFile.empty()) throw UserError(kMainError, "no parameter file was chosen");
    const double minComponent = minComponentValue(request);
    if (std::error_code error; std::filesystem::exists(environment.tableDirectory, error) &&
                               !std::filesystem::is_directory(environment.tableDirectory, error))
        throw UserError(kMainError, "The table folder " + environment.tableDirectory.string() +
                                        " is a file, not a folder");
    if (!std::isfinite(request.energyShift))
        throw UserError(kMainError, "the shift in calculated energies is not a finite number");
    if (request.eigenvectorsToStore < 0)
        throw UserError(kMainError, "the number of eigenvectors to store cannot be negative");

    constexpr int kStages = 5;  // parameters, engine, tables, sections, files
    environment.log.progress(LogCategory::Run, "run", 0, kStages);
    auto set = readParameterFileForRun(parameterFile);
    if (const auto problem = switchValueProblem(request.optionText)) throw UserError(kMainError, *problem);
    set.switches = readRunSwitches(set.optionLine + " " + request.optionText + " " + engineSwitchOf(outcome.kind));
    refuseUnsupportedSwitches(set.switches, std::nullopt);  // a switch given with the run's own options
    const bool keepEnergies = settings.readInt(kSettingsSection, kKeepEnergiesKey, 1) != 0;
    const int runCounter = settings.readInt(kSettingsSection, kRunCounterKey, 0);
    outcome.names =
        withUnwantedDiscarded(resultNamesFor(parameterFile, outcome.kind, keepEnergies, runCounter), request);
    outcome.parameterFile = parameterFile;
    removeStaleTemporaries(parameterFile.parent_path());  // temporaries of killed runs

    ResultFile generalFile(outcome.names.general);
    NullLogBook nowhere;
    std::optional<BufferedStreamLogBook> generalStream;
    if (generalFile.wanted()) generalStream.emplace(generalFile.stream());
    LogBook& general = generalStream ? static_cast<LogBook&>(*generalStream) : nowhere;
    TeeLogBook progress(general, environment.log);

    writeBanner(general, orvaneVersion(), set.switches.detailedProperties);
    progress.appendLine("*** Starting time: " + timeStamp());
    progress.appendLine("Get parameters from " + parameterFile.string());
    progress.appendLine("General output to " + outcome.names.general);
    writeParameterEcho(general, set);
    for (const auto& warning : crystalFieldSymmetryWarnings(set)) progress.appendLine("Warning: " + warning);
    progress.appendLine("Store up sorted Eigen energies in " + outcome.names.energies);
    progress.appendLine("Store up eigenvectors and energies in " + outcome.names.vectors);
    progress.appendLine("min. value of eigenstate to be processed is " + request.minComponent);
    progress.appendLine("no. of lowest energy eigenvectors to be stored (0 for all) = " +
                        std::to_string(request.eigenvectorsToStore));

    environment.log.progress(LogCategory::Run, "run", 1, kStages);
    EnergyLevelOptions options;
    options.crystalField = !freeIon;
    options.wantVectors = true;
    options.complex = complex;
    // The engine's lines are replayed in the run's order below; its progress
    // (tables generated on first use, crystal-field blocks) is shown at once.
    MemoryLogBook engineLog;
    CallbackLogBook engineEvents([&](const LogEvent& event) {
        if (event.kind == LogEventKind::Progress) environment.log.record(event);
        else engineLog.record(event);
    });
    const auto run = runWithTables(set, options, environment, engineEvents, engineError);
    const auto& result = run.result;
    outcome.crystalFieldStage = options.crystalField;

    std::vector<std::string> freeIonStoring = {"Storing Free-ion statevectors",
                                               "Printing out Free-ion energies and statevectors"};
    freeIonStoring.push_back(freeIon ? "Storing Free-ion  eigen energies in " + outcome.names.energies
                                     : "Storing Free-ion  eigen energies (Free-ion) in " + outcome.names.general);
    replayEngineLog(engineLog.lines(), progress, general, freeIonStoring);

    environment.log.progress(LogCategory::Run, "run", 2, kStages);
    const EngineTables& tables = result.model->tables();
    const auto freeIonBasis = freeIonResultBasis(tables.terms, result.freeIonOperators.basis);
    const auto freeIonLevels = freeIonResultLevels(result, freeIonBasis, minComponent);
    const double shift = request.energyShift;
    writeContributions(general, freeIonContributions(result.freeIonOperators, result.freeIonWeights, result.freeIon));

    environment.log.progress(LogCategory::Run, "run", 3, kStages);
    ResultBasis& finalBasis = outcome.basis;
    finalBasis = freeIonBasis;
    if (freeIon) {
        outcome.levels = freeIonLevels;
        requireAscending(outcome.levels, shift);
        writeCumulativeEnergies(general, outcome.levels, shift);
        writeFreeIonLevelTable(general, outcome.levels, freeIonBasis, tables.terms, shift);
        writeStatevectors(general, "Free-ion Eigen energies and statevectors", outcome.levels, freeIonBasis,
                          request.eigenvectorsToStore, shift);
        writeStateLabels(general, freeIonBasis);
        writeLevelTable(general, outcome.levels, set.fold, shift);
    } else {
        progress.appendLine("Printing out Crystal Field energies and statevectors");
        progress.appendLine("Storing Crystal Field statevectors in " + outcome.names.vectors);
        progress.appendLine("Storing Crystal Field eigen energies in " + outcome.names.energies);
        writeFreeIonJTable(general, freeIonLevels, freeIonBasis, tables.terms, shift);
        finalBasis = crystalFieldResultBasis(tables.terms, result.freeIonOperators.basis);
        outcome.levels = crystalFieldResultLevels(result, finalBasis, minComponent);
        requireAscending(outcome.levels, shift);
        attachIrreps(result, set.switches, parameterFile, outcome.levels);
        writeCumulativeEnergies(general, outcome.levels, shift);
        writeStatevectors(general, "Eigen energies and statevectors", outcome.levels, finalBasis,
                          request.eigenvectorsToStore, shift);
        writeStateLabels(general, finalBasis);
        writeLevelTable(general, outcome.levels, set.fold, shift);
        const auto site = siteLabellingOf(set.switches);  // doublets paired by irreps under "/ptgp= n"
        if (set.switches.detailedProperties)
            writeDetailedProperties(general, outcome.levels, set.fold,
                                    environment.doubletGFactors
                                        ? environment.doubletGFactors(result, site ? &*site : nullptr)
                                        : std::vector<DoubletGValues>{},
                                    shift);
        const auto& tensors = result.crystalFieldTensors;
        writeMultipletElements(general, multipletCrystalFieldElements(tensors, result.conjugate), freeIonLevels);
        const auto invariants = appliedInvariants(result);
        writeInvariants(general, invariants);
        std::vector<double> freeIonEnergies;
        for (const auto& level : result.freeIon.levels) freeIonEnergies.push_back(level.energy);
        const std::array<double, 3> squared = {invariants[0] * invariants[0], invariants[1] * invariants[1],
                                               invariants[2] * invariants[2]};
        writeBarycentreShifts(general, barycentreShifts(tensors, freeIonEnergies, squared), shift);
    }

    environment.log.progress(LogCategory::Run, "run", 4, kStages);
    const std::string unit(energyUnitName(set.switches.energyUnit));
    outcome.energyUnit = unit;
    ResultFile vectorFile(outcome.names.vectors);
    if (vectorFile.wanted())
        writeStateVectorText(vectorFile.stream(), {set.title, unit, shift, complex}, finalBasis, tables.terms,
                             outcome.levels, request.eigenvectorsToStore);
    ResultFile energyFile(outcome.names.energies);
    if (energyFile.wanted()) {
        try {
            writeEnergyText(energyFile.stream(), fmt::format("Energies ({}, shift {}): {}", unit, shift, set.title),
                            outcome.levels, shift, set.fold);
        } catch (const std::exception& error) {
            throw UserError(ErrorCategory::StoringEnergies, error.what());
        }
    }
    general.appendLine("***** Work Completed on " + timeStamp() + " *****");

    // All result files or none: when one cannot be stored, no file is replaced.
    // They are finished in the order written, so the first that failed is named.
    std::vector<AtomicFileWriter*> writers;
    for (ResultFile* file : {&generalFile, &vectorFile, &energyFile})
        if (file->wanted()) writers.push_back(file->writer());
    try {
        commitTogether(writers);
    } catch (const CommitError& error) {
        const bool energies = energyFile.wanted() && writers[error.failedIndex()] == energyFile.writer();
        throw UserError(energies ? ErrorCategory::StoringEnergies : ErrorCategory::File, error.what());
    }

    environment.log.progress(LogCategory::Run, "run", kStages, kStages);
    settings.write(kSettingsSection, kRunCounterKey, std::to_string(runCounter + 1));
    outcome.request = request;
    outcome.showGeneralOutput = generalFile.wanted() && runCounter < kRunCounterLimit;
    return outcome;
}

}  // namespace orvane
