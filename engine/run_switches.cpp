#include "engine/run_switches.hpp"

#include <cmath>
#include <limits>
#include <optional>

#include "core/text.hpp"

namespace orvane {
namespace {

bool has(std::string_view line, std::string_view key) {
    return line.find(key) != std::string_view::npos;
}

// The integer after a valued switch ("/ptgp= 5"): leading blanks skipped, the
// number must be integral; std::nullopt when the switch is absent or its
// value unreadable.
std::optional<int> valueAfter(std::string_view line, std::string_view key) {
    const auto at = line.find(key);
    if (at == std::string_view::npos) return std::nullopt;
    std::size_t consumed = 0;
    const auto number = leadingNumber(line.substr(at + key.size()), &consumed);
    if (!number || consumed == 0 || *number != std::floor(*number)) return std::nullopt;
    if (std::fabs(*number) > std::numeric_limits<int>::max()) return std::nullopt;
    return static_cast<int>(*number);
}

}  // namespace

RunSwitches readRunSwitches(std::string_view line) {
    RunSwitches s;
    s.opimkpk = has(line, "/opimkpk");
    s.noSpinSpin = has(line, "/noss");
    s.wrongRankSpinSpin = has(line, "/wrongrankss");
    s.t2Correction = has(line, "/t2correction");
    s.useZic = has(line, "/usezic");
    s.actualShell = has(line, "/actualshell");
    if (has(line, "/mnuIRkoster")) s.irNotation = 1;
    if (has(line, "/mnuIRmuliken")) s.irNotation = 2;
    if (has(line, "/mnuIRuser")) s.irNotation = 3;
    if (has(line, "/mnuIRcqn")) s.irNotation = 4;
    if (const auto n = valueAfter(line, "/IRnotation="); n && *n >= 1 && *n <= 4) s.irNotation = *n;
    s.properRotationIrreps = has(line, "/IRproper");
    s.detailedProperties = has(line, "/detailedproperties");
    if (has(line, "/Eunit=2")) s.energyUnit = EnergyUnit::MilliElectronVolt;
    if (has(line, "/Eunit=3")) s.energyUnit = EnergyUnit::Kelvin;
    if (has(line, "/Eunit=4")) s.energyUnit = EnergyUnit::MilliRydberg;
    s.cubicCF = has(line, "/cubiccf");
    s.pointGroup = valueAfter(line, "/ptgp=");
    if (const auto n = valueAfter(line, "/spinmmin="); n && *n >= 1) s.minSpinMultiplicity = n;
    s.printHamiltonian = has(line, "/printhm");
    s.correlationSections = has(line, "/ccf");
    return s;
}

std::optional<std::string> switchValueProblem(std::string_view line) {
    constexpr std::string_view key = "/spinmmin=";
    if (line.find(key) == std::string_view::npos) return std::nullopt;
    const auto n = valueAfter(line, key);
    if (n && *n >= 1 && *n <= kMaxSpinMultiplicity) return std::nullopt;
    const auto at = line.find(key) + key.size();
    const std::string_view rest = trim(line.substr(at, line.find('/', at) - at));
    return "The minimum spin multiplicity of \"/spinmmin=\" must be an integer from 1 to " +
           std::to_string(kMaxSpinMultiplicity) + ", found \"" + std::string(rest) + "\"";
}

void refuseUnsupportedSwitches(const RunSwitches& s, const std::optional<FileLocation>& where) {
    if (s.opimkpk)
        throw UserError("Error in Main", "/opimkpk (alternative magnetic operator set) is not supported", where);
}

std::string runSwitchesText(const RunSwitches& s) {
    std::string line;
    if (s.opimkpk) line += "/opimkpk";
    if (s.noSpinSpin) line += "/noss";
    if (s.wrongRankSpinSpin) line += "/wrongrankss";
    if (s.t2Correction) line += "/t2correction";
    if (s.useZic) line += "/usezic";
    if (s.actualShell) line += "/actualshell";
    if (s.irNotation != 1) line += "/IRnotation= " + std::to_string(s.irNotation) + " ";
    if (s.properRotationIrreps) line += "/IRproper";
    if (s.detailedProperties) line += "/detailedproperties";
    if (s.energyUnit != EnergyUnit::Wavenumber)
        line += "/Eunit=" + std::to_string(static_cast<int>(s.energyUnit)) + " ";
    if (s.cubicCF) line += "/cubiccf";
    if (s.pointGroup) line += "/ptgp= " + std::to_string(*s.pointGroup) + " ";
    if (s.minSpinMultiplicity) line += "/spinmmin= " + std::to_string(*s.minSpinMultiplicity) + " ";
    if (s.correlationSections) line += "/ccf";
    return line;
}

std::string_view energyUnitName(EnergyUnit unit) {
    switch (unit) {
        case EnergyUnit::MilliElectronVolt: return "meV";
        case EnergyUnit::Kelvin: return "K";
        case EnergyUnit::MilliRydberg: return "mRy";
        case EnergyUnit::Wavenumber: break;
    }
    return "cm^-1";
}

}  // namespace orvane
