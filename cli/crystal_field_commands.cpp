// Crystal-field parameter tools: `orvane convert`, `rotate`, `invariants`, `cubic`
// and `sm`. Each reads a parameter file (or a ligand file), maps its crystal-field
// rows onto the params records, runs one library operation, prints the lines the
// editor would log and, with -o, writes the resulting parameter file atomically.
#include <cmath>
#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "interactive/parameter_dialogs.hpp"
#include "cli/commands.hpp"
#include "cli/terminal_log_book.hpp"
#include "cli/exit_code.hpp"
#include "interactive/asker.hpp"
#include "interactive/command_line_asker.hpp"
#include "core/log_book.hpp"
#include "core/user_error.hpp"
#include "engine/crystal_field_table.hpp"
#include "engine/orthogonal_electrostatic.hpp"
#include "engine/parameter_file.hpp"
#include "engine/parameter_values.hpp"
#include "params/cf_conventions.hpp"
#include "params/cf_invariants.hpp"
#include "interactive/cf_rotation_dialogs.hpp"
#include "params/cubic_approximation.hpp"
#include "params/energy_units.hpp"
#include "params/ligand_file.hpp"
#include "interactive/superposition_runs.hpp"
#include "params/superposition_estimation.hpp"
#include "params/superposition.hpp"
#include "params/value_cell.hpp"
#include "tables/table_directory.hpp"

namespace orvane::cli {
namespace {

using params::CfNormalisation;
using params::CfTable;

CfTable tableOf(const ParameterSet& set) { return crystalFieldTableOf(set); }

// Stores the rows, telling when a rotation needed a smaller fold (engine/crystal_field_table.hpp).
void reportFoldChange(std::optional<int> before, const ParameterSet& set) {
    if (before) std::cout << "Fold of symmetry axis changed from " << *before << " to " << set.fold << "\n";
}

void storeTable(ParameterSet& set, const CfTable& table) { reportFoldChange(storeCrystalFieldTable(set, table), set); }

// Every result is checked before it is shown or written.
void printRows(const CfTable& table, const std::string& heading) {
    for (const params::CfRow& row : table.rows)
        if (!std::isfinite(row.re.value) || !std::isfinite(row.im.value))
            throw UserError(ErrorCategory::ParameterConversion,
                            "The result for k = " + std::to_string(row.k) + ", q = " + std::to_string(row.q) +
                                " is not a finite number");
    std::cout << heading << "\n";
    for (const params::CfRow& row : table.rows)
        std::cout << params::formatRowLine(row, table.complexMode) << "\n";
}

// Runs an operation, turning a UserError into "title: file:line: message" and exit 1.
void guarded(const std::function<void()>& operation) {
    try {
        operation();
        setExitCode(kExitOk);
    } catch (const UserError& error) {
        std::cerr << error.title() << ": " << error.describe() << "\n";
        setExitCode(kExitFailure);
    } catch (const std::exception& error) {
        std::cerr << "Error: " << error.what() << "\n";
        setExitCode(kExitFailure);
    }
}

void writeIfAsked(const std::string& output, const ParameterSet& set) {
    if (output.empty()) return;
    writeParameterFile(output, set);
    std::cout << "Written " << output << "\n";
}

// ---- orvane convert ----

struct ConvertOptions {
    std::string file;
    std::string output;
    std::string from;
    std::string to;
    std::string scope = "all";
};

void runNormalisationConversion(const ConvertOptions& o, params::CfConversion conversion) {
    ParameterSet set = readParameterFile(o.file);
    try {
        convertCrystalFieldConvention(set, conversion);
    } catch (const UserError& error) {
        throw UserError(error.title(), o.file + ": " + error.what());
    }
    printRows(tableOf(set), "Crystal field parameters in " +
                                normalisationName(params::conversionTarget(conversion)) + " form:");
    writeIfAsked(o.output, set);
}

// `o.from` holds the table directory (empty: the default one).
void runOrthogonalElectrostatic(const ConvertOptions& o) {
    ParameterSet set = readParameterFile(o.file);
    TerminalLogBook log(LogRole::Results);
    // On the command line the answer to "Adopt them into this input form?" is Yes exactly when -o is given.
    ScriptedAsker asker({}, {o.output.empty() ? Choice::No : Choice::Yes});
    if (convertToOrthogonalElectrostaticAsking(
            set, o.from.empty() ? defaultTableDirectory() : std::filesystem::path(o.from), asker, log))
        writeIfAsked(o.output, set);
}

void runUnitConversion(const ConvertOptions& o) {
    const auto from = params::unitFromName(o.from);
    const auto to = params::unitFromName(o.to);
    const auto scope = params::scopeFromName(o.scope);
    if (!from || !to || !scope)
        throw UserError("Error in energy unit conversion",
                        "Units are cm-1, meV, K or mRy and scopes all, cfp, major or minor");
    ParameterSet set = readParameterFile(o.file);
    const auto fileUnit = static_cast<params::EnergyUnitCode>(static_cast<int>(set.switches.energyUnit));
    if (fileUnit != *from)
        throw UserError("Error in energy unit conversion",
                        "The parameters of " + o.file + " are in " + params::unitName(fileUnit) +
                            ", not " + params::unitName(*from));
    params::ParameterValues values = parameterValuesOf(set);
    params::convertEnergyUnit(values, *to, *scope);
    if (const auto before = storeParameterValues(set, values))
        std::cout << "Fold of symmetry axis changed from " << *before << " to " << set.fold << "\n";
    std::cout << "Energy unit converted from " << params::unitName(*from) << " to "
              << params::unitName(*to) << " (" << o.scope << "); column "
              << params::unitHeading(*to) << "\n";
    for (const FreeIonRow& row : set.mainFreeIon) std::cout << "  " << row.name << "  " << row.cell.text << "\n";
    for (const FreeIonRow& row : set.otherFreeIon) std::cout << "  " << row.name << "  " << row.cell.text << "\n";
    printRows(values.crystalField, "Crystal field parameters:");
    writeIfAsked(o.output, set);
}

void addConvert(CLI::App& app) {
    auto* convert = app.add_subcommand("convert", "Change the normalisation or energy unit of the parameters");
    convert->require_subcommand(1);
    struct Direction {
        const char* name;
        const char* help;
        params::CfConversion conversion;
    };
    static const Direction directions[] = {
        {"stevens2wybourne", "Stevens to Wybourne form", params::CfConversion::StevensToWybourne},
        {"wybourne2stevens", "Wybourne to Stevens form", params::CfConversion::WybourneToStevens},
        {"wybourne2unit", "Wybourne to unit-tensor form", params::CfConversion::WybourneToUnit},
        {"unit2wybourne", "unit-tensor to Wybourne form", params::CfConversion::UnitToWybourne},
    };
    for (const Direction& d : directions) {
        auto options = std::make_shared<ConvertOptions>();
        auto* sub = convert->add_subcommand(d.name, d.help);
        sub->add_option("FILE", options->file, "Parameter file (.par)")->required()->check(CLI::ExistingFile);
        sub->add_option("-o,--output", options->output, "Write the converted parameter file here");
        sub->callback([options, &d] {
            guarded([&] { runNormalisationConversion(*options, d.conversion); });
        });
    }
    auto options = std::make_shared<ConvertOptions>();
    auto* units = convert->add_subcommand("units", "Convert the energy unit (cm-1, meV, K, mRy)");
    units->add_option("FILE", options->file, "Parameter file (.par)")->required()->check(CLI::ExistingFile);
    units->add_option("--from", options->from, "Unit of the file")->required();
    units->add_option("--to", options->to, "New unit")->required();
    units->add_option("--scope", options->scope, "all, cfp, major or minor (default all)");
    units->add_option("-o,--output", options->output, "Write the converted parameter file here");
    units->callback([options] { guarded([&] { runUnitConversion(*options); }); });

    auto orthogonal = std::make_shared<ConvertOptions>();
    auto* sub = convert->add_subcommand(
        "orthogonal", "Electrostatic parameters (E1-E3, ALPHA, BETA, GAMMA) for the orthogonalised operators");
    sub->add_option("FILE", orthogonal->file, "Parameter file (.par)")->required()->check(CLI::ExistingFile);
    sub->add_option("--tables", orthogonal->from, "Table directory (default: the delivered rme directory)");
    sub->add_option("-o,--output", orthogonal->output, "Adopt the converted parameters and write them here");
    sub->callback([orthogonal] { guarded([&] { runOrthogonalElectrostatic(*orthogonal); }); });
}

// ---- orvane rotate ----

struct RotateOptions {
    std::string file;
    std::string output;
    std::vector<double> euler;
    bool c3toc4 = false;
    bool c4toc3 = false;
    std::vector<int> zeroIm;
    std::string garnetSite;
};

void runRotate(const RotateOptions& o) {
    const int chosen = (!o.euler.empty()) + o.c3toc4 + o.c4toc3 + (!o.zeroIm.empty()) + (!o.garnetSite.empty());
    if (chosen != 1)
        throw UserError("Rotation of Crystal Field Parameters",
                        "Choose exactly one of --euler, --c3toc4, --c4toc3, --zero-im, --garnet-site");
    ParameterSet set = readParameterFile(o.file);
    CfTable table = tableOf(set);
    TerminalLogBook log(LogRole::Results);
    params::RotationHistory history;
    params::rotateInTensorForm(table, normalisationOf(set.cfConvention), [&](CfTable& rows) {
        if (!o.euler.empty()) {
            params::rotateAndLog(rows, {o.euler[0], o.euler[1], o.euler[2]}, history, log);
        } else if (o.c3toc4) {
            params::rotateC3toC4(rows, log, history);
        } else if (o.c4toc3) {
            params::rotateC4toC3(rows, log, history);
        } else if (!o.zeroIm.empty()) {
            params::rotateToZeroImaginary(rows, o.zeroIm[0], o.zeroIm[1], log, history);
        } else {
            const auto choice = params::parseGarnetChoice(o.garnetSite);
            if (!choice)
                throw UserError("Rotation of Crystal Field Parameters for Equivalent Sites in Garnets",
                                "Invalid site: " + o.garnetSite + " (1..6, optionally followed by f)");
            params::rotateToGarnetSite(rows, *choice, log, history);
        }
    });
    storeTable(set, table);
    writeIfAsked(o.output, set);
}

void addRotate(CLI::App& app) {
    auto o = std::make_shared<RotateOptions>();
    auto* rotate = app.add_subcommand("rotate", "Rotate the frame of the crystal-field parameters");
    rotate->add_option("FILE", o->file, "Parameter file (.par)")->required()->check(CLI::ExistingFile);
    rotate->add_option("--euler", o->euler, "Euler angles alpha beta gamma in degrees")->expected(3)->check(kFiniteNumber);
    rotate->add_flag("--c3toc4", o->c3toc4, "From a [111] to a [001] quantisation axis");
    rotate->add_flag("--c4toc3", o->c4toc3, "From a [001] to a [111] quantisation axis");
    rotate->add_option("--zero-im", o->zeroIm, "k q: rotate about z so that Im Bkq = 0")->expected(2);
    rotate->add_option("--garnet-site", o->garnetSite, "Garnet site 1..6; add f for the rotation back to site 1");
    rotate->add_option("-o,--output", o->output, "Write the rotated parameter file here");
    rotate->callback([o] { guarded([&] { runRotate(*o); }); });
}

// ---- orvane invariants / cubic ----

void addInvariants(CLI::App& app) {
    auto file = std::make_shared<std::string>();
    auto* sub = app.add_subcommand("invariants", "Rotational invariants and crystal-field strength");
    sub->add_option("FILE", *file, "Parameter file (.par)")->required()->check(CLI::ExistingFile);
    sub->callback([file] {
        guarded([&] {
            const ParameterSet set = readParameterFile(*file);
            const auto inv = params::computeInvariants(tableOf(set), normalisationOf(set.cfConvention));
            for (const std::string& line : params::invariantLines(inv)) std::cout << line << "\n";
        });
    });
}

struct CubicOptions {
    std::string file;
    std::string axis = "001";
    std::string output;
};

void addCubic(CLI::App& app) {
    auto o = std::make_shared<CubicOptions>();
    auto* sub = app.add_subcommand("cubic", "Cubic approximation along [001] or [111]");
    sub->add_option("FILE", o->file, "Parameter file (.par)")->required()->check(CLI::ExistingFile);
    sub->add_option("--axis", o->axis, "001 or 111")->check(CLI::IsMember({"001", "111"}));
    sub->add_option("-o,--output", o->output, "Adopt the cubic set and write it here");
    sub->callback([o] {
        guarded([&] {
            ParameterSet set = readParameterFile(o->file);
            CfTable table = tableOf(set);
            // On the command line the answer to "Adopt ...?" is Yes exactly when -o is given.
            ScriptedAsker asker({}, {o->output.empty() ? Choice::No : Choice::Yes});
            TerminalLogBook log(LogRole::Results);
            params::cubicApproximationAsking(
                table, normalisationOf(set.cfConvention),
                o->axis == "111" ? params::CubicAxis::Threefold111 : params::CubicAxis::Fourfold001,
                asker, log);
            storeTable(set, table);
            writeIfAsked(o->output, set);
        });
    });
}

// ---- orvane sm ----

struct SuperpositionOptions {
    std::string ligands;
    std::string file;
    std::string base;
    std::string output;
    std::optional<double> r0;
    std::vector<double> bk;
    std::vector<double> tk;
    bool stevensType = false;
    bool ignoreZeroR0 = false;
};

params::LigandFile readLigandsWithR0(const SuperpositionOptions& o, params::SuperpositionParameters& p) {
    params::LigandFile ligands = params::readLigandFile(o.ligands);
    p.r0 = o.r0 ? *o.r0 : ligands.r0.value_or(0.0);
    p.stevensType = o.stevensType;
    for (int i = 0; i < 3; ++i) p.tk[i] = o.tk[i];
    return ligands;
}

void runSm(const SuperpositionOptions& o) {
    params::SuperpositionParameters p;
    const params::LigandFile ligands = readLigandsWithR0(o, p);
    for (int i = 0; i < 3; ++i) p.bk[i] = o.bk[i];
    // "Abort/Retry/Ignore" is answered by --ignore-zero-r0 or refused.
    CommandLineAsker asker(std::cout, {}, o.ignoreZeroR0 ? std::vector{Choice::Ignore} : std::vector<Choice>{});
    const auto result = params::superpositionBkqAsking(ligands.ligands, p, asker);
    if (!result) throw UserError("Error in setting up ligand positions", "Reference ligand distance = 0!");
    std::cout << "Superposition model: " << ligands.ligands.size() << " ligands, R0 = " << result->parameters.r0
              << "\n";
    printRows(result->table, p.stevensType ? "Bkq (Stevens-type coordination factors):" : "Bkq (Wybourne):");
    if (!o.output.empty()) {
        ParameterSet set = o.base.empty() ? ParameterSet{} : readParameterFile(o.base);
        reportFoldChange(params::adoptSuperpositionBkq(set, result->table), set);
        writeIfAsked(o.output, set);
    }
}

void runSuperpositionEstimate(const SuperpositionOptions& o) {
    params::SuperpositionParameters p;
    const params::LigandFile ligands = readLigandsWithR0(o, p);
    const auto estimate = params::estimateFromParameterSet(ligands.ligands, p, readParameterFile(o.file));
    for (const std::string& line : params::estimateLines(estimate)) std::cout << line << "\n";
}

void addSm(CLI::App& app) {
    auto o = std::make_shared<SuperpositionOptions>();
    auto* sm = app.add_subcommand("sm", "Superposition model: Bkq from ligand positions");
    sm->add_option("LIGANDS", o->ligands, "Ligand file (R theta phi per line)");
    sm->add_option("--r0", o->r0, "Reference distance R0 (default: the file's R0 line)")->check(kFiniteNumber);
    sm->add_option("--bk", o->bk, "Intrinsic parameters b2 b4 b6")->expected(3)->check(kFiniteNumber);
    sm->add_option("--tk", o->tk, "Exponents t2 t4 t6")->expected(3)->check(kFiniteNumber);
    sm->add_flag("--stevens-type", o->stevensType, "Coordination factors without the Wybourne division");
    sm->add_flag("--ignore-zero-r0", o->ignoreZeroR0, "Answer Ignore to \"Reference ligand distance = 0!\"");
    sm->add_option("--par", o->base, "Take the rest of the written parameter file from this one");
    sm->add_option("-o,--output", o->output, "Write the Bkq as a parameter file");
    sm->require_subcommand(0, 1);

    auto e = std::make_shared<SuperpositionOptions>();
    auto* estimate = sm->add_subcommand("estimate", "Estimate b2 b4 b6 from the Bkq of a parameter file");
    estimate->add_option("LIGANDS", e->ligands, "Ligand file")->required()->check(CLI::ExistingFile);
    estimate->add_option("FILE", e->file, "Parameter file (.par)")->required()->check(CLI::ExistingFile);
    estimate->add_option("--r0", e->r0, "Reference distance R0 (default: the ligand file's R0 line)")->check(kFiniteNumber);
    estimate->add_option("--tk", e->tk, "Exponents t2 t4 t6")->expected(3)->required()->check(kFiniteNumber);
    estimate->add_flag("--stevens-type", e->stevensType, "Coordination factors without the Wybourne division");
    estimate->callback([e] { guarded([&] { runSuperpositionEstimate(*e); }); });

    sm->callback([o, sm, estimate] {
        if (sm->got_subcommand(estimate)) return;
        if (o->ligands.empty() || o->bk.size() != 3 || o->tk.size() != 3) {
            std::cerr << "orvane sm: give LIGANDS, --bk b2 b4 b6 and --tk t2 t4 t6\n";
            setExitCode(kExitUsage);
            return;
        }
        guarded([&] { runSm(*o); });
    });
}

}  // namespace

void addCrystalFieldCommands(CLI::App& app) {
    addConvert(app);
    addRotate(app);
    addInvariants(app);
    addCubic(app);
    addSm(app);
}

}  // namespace orvane::cli
