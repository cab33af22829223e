// `orvane par check FILE` and `orvane par write IN OUT`: read a parameter
// file, show what the engine will see, or rewrite it in the normal form.
#include <functional>
#include <iostream>
#include <memory>
#include <string>

#include "cli/commands.hpp"
#include "cli/exit_code.hpp"
#include "core/number_format.hpp"
#include "core/user_error.hpp"
#include "engine/editor_checks.hpp"
#include "engine/other_free_ion.hpp"
#include "engine/parameter_file.hpp"
#include "engine/run_switches.hpp"

namespace orvane::cli {
namespace {

std::string_view conventionName(CfConvention convention) {
    switch (convention) {
        case CfConvention::Stevens: return "Stevens";
        case CfConvention::UnitOperators: return "unit operators";
        case CfConvention::Wybourne: break;
    }
    return "Wybourne";
}

std::string_view onOff(bool on) { return on ? "on" : "off"; }

void printCrystalFieldRows(std::ostream& out, const std::vector<CrystalFieldRow>& rows,
                           std::string_view prefix) {
    for (const CrystalFieldRow& row : rows) {
        out << "  " << prefix << row.k << row.q << " = " << formatNumber(row.re.value, "######0.######");
        if (row.im.value != 0.0) out << " + i " << formatNumber(row.im.value, "######0.######");
        out << "\n";
    }
}

// The fit section: each parameter's option and, for a linked one, its master.
void printFitSetup(std::ostream& out, const ParameterSet& set) {
    if (set.fitSetup.empty()) return;
    out << "Fit options: " << set.fitSetup.size() << "\n";
    for (const auto& row : set.fitSetup) {
        out << "  " << row.name << " " << row.option;
        if (!row.linkedTo.empty()) out << " (is related to " << row.linkedTo << ")";
        out << "\n";
    }
}

void printSwitches(std::ostream& out, const ParameterSet& set) {
    const RunSwitches& s = set.switches;
    out << "Option line: " << (set.hasOptionLine ? "\"" + set.optionLine + "\"" : "(absent)") << "\n";
    out << "  /opimkpk " << onOff(s.opimkpk) << ", /noss " << onOff(s.noSpinSpin)
        << ", /wrongrankss " << onOff(s.wrongRankSpinSpin) << ", /t2correction "
        << onOff(s.t2Correction) << ", /usezic " << onOff(s.useZic) << ", /actualshell "
        << onOff(s.actualShell) << "\n";
    out << "  /IRnotation= " << s.irNotation << ", energy unit " << energyUnitName(s.energyUnit)
        << " (" << static_cast<int>(s.energyUnit) << "), /cubiccf " << onOff(s.cubicCF)
        << ", /printhm " << onOff(s.printHamiltonian) << ", /ccf " << onOff(s.correlationSections)
        << "\n";
    out << "  /ptgp= ";
    if (!s.pointGroup) out << "(none)";
    else if (const PointGroup* group = pointGroupByIndex(*s.pointGroup))
        out << *s.pointGroup << " (" << group->name << ", fold " << group->fold << ")";
    else out << *s.pointGroup << " (not a point group of the list)";
    out << ", /spinmmin= ";
    if (s.minSpinMultiplicity) out << *s.minSpinMultiplicity;
    else out << "(no truncation)";
    out << "\n";
}

void printSet(std::ostream& out, const ParameterSet& set) {
    out << "Version: " << set.version << "\n";
    out << "Title: " << set.title << "\n";
    out << "Note: " << set.note << "\n";
    out << "Description: " << set.description << "\n";
    const IonElectrons ion = electronsFromTitle(set.title);
    out << "No. of electrons: " << set.electronCount;
    if (ion.electrons) out << " (from the title: " << *ion.electrons << ")";
    else out << " (title: " << ion.message << ")";
    out << "\n";
    out << "Fold of symmetry axis: " << set.fold << "\n";
    out << "Electrostatic parameters: type " << static_cast<int>(set.slaterType) << ", "
        << slaterTypeText(set.slaterType) << "\n";
    for (const FreeIonRow& row : set.mainFreeIon)
        out << "  " << (row.name.empty() ? "(unnamed)" : row.name) << " = "
            << generalNumber(row.cell.value) << "\n";

    out << "Other free-ion parameters (" << set.otherFreeIon.size() << " rows):\n";
    const OtherFreeIonValues values = resolveOtherFreeIon(set.otherFreeIon);
    for (std::size_t i = 0; i < kOtherFreeIonNames.size(); ++i)
        out << "  " << kOtherFreeIonNames[i] << " = " << generalNumber(values.value[i])
            << (values.fromDefault[i] ? "  (default)" : "") << "\n";

    out << "Crystal field (" << conventionName(set.cfConvention) << " convention, "
        << set.crystalField.size() << " rows):\n";
    printCrystalFieldRows(out, set.crystalField, "B");
    printSwitches(out, set);
    for (const CorrelationSection& section : set.correlationCF) {
        out << "Correlation crystal field " << correlationName(section.kind) << " ("
            << section.rows.size() << " rows):\n";
        printCrystalFieldRows(out, section.rows, correlationRowPrefix(section.kind));
    }
    printFitSetup(out, set);
    for (const std::string& question : correlationSectionQuestions(set))
        out << "Warning: " << question << "\n";
    if (set.switches.pointGroup) {
        const FoldCheck fold = checkFold(set.fold, *set.switches.pointGroup);
        if (!fold.message.empty()) out << "Warning: " << fold.message << "\n";
        for (const std::string& warning : crystalFieldSymmetryWarnings(set)) out << "Warning: " << warning << "\n";
    }
}

int runGuarded(const std::function<void()>& action) {
    try {
        action();
        return kExitOk;
    } catch (const UserError& error) {
        std::cerr << error.describe() << "\n";
        return kExitFailure;
    }
}

}  // namespace

void addParCommand(CLI::App& app) {
    CLI::App* par = app.add_subcommand("par", "Read, check and rewrite parameter files (.par)");
    par->require_subcommand(1);

    auto checkPath = std::make_shared<std::string>();
    CLI::App* check = par->add_subcommand(
        "check", "Read a parameter file and print the parameters as the engine reads them");
    check->add_option("FILE", *checkPath, "Parameter file")->required();
    check->callback([checkPath]() {
        setExitCode(runGuarded([&]() { printSet(std::cout, readParameterFile(*checkPath)); }));
    });

    auto inPath = std::make_shared<std::string>();
    auto outPath = std::make_shared<std::string>();
    CLI::App* write = par->add_subcommand(
        "write", "Read a parameter file and write it again in the normal form");
    write->add_option("IN", *inPath, "Parameter file to read")->required();
    write->add_option("OUT", *outPath, "File to write (replaced only when complete)")->required();
    write->callback([inPath, outPath]() {
        setExitCode(runGuarded([&]() {
            writeParameterFile(*outPath, readParameterFile(*inPath));
            std::cout << "## Input parameters saved to: " << *outPath << " at "
                      << formatTime(localNow()) << "\n";
        }));
    });
}

}  // namespace orvane::cli
