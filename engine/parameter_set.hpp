#pragma once
// The content of one parameter file (".par"): the free-ion and crystal-field
// parameters of one ion at one site and the line of run switches.
// Energies are in the set's energy unit (cm^-1 unless energyUnit says otherwise).
#include <array>
#include <optional>
#include <string>
#include <vector>

namespace orvane {

// A value as written in the file or typed in the editor, with its number.
// The text may carry more than the number: "123.4(5)" (value and uncertainty),
// "0.56M0" (a multiple of M0). `value` is the number the engine uses.
// A cell read from a file always has its text (trimmed; inner blanks of
// crystal-field cells removed). A multiple such as "0.56M0" keeps here the
// number before the letters (0.56); other_free_ion.hpp resolves it.
struct ParameterCell {
    std::string text;
    double value = 0.0;
    friend bool operator==(const ParameterCell&, const ParameterCell&) = default;
};

struct FreeIonRow {
    std::string name;  // may be empty: a main row holding only its value
    ParameterCell cell;
    friend bool operator==(const FreeIonRow&, const FreeIonRow&) = default;
};

struct CrystalFieldRow {
    int k = 0;
    int q = 0;
    ParameterCell re;
    ParameterCell im;
    friend bool operator==(const CrystalFieldRow&, const CrystalFieldRow&) = default;
};

// Largest rank a crystal-field (or correlation crystal-field) row may carry.
inline constexpr int kMaxCrystalFieldRank = 12;

enum class CfConvention { Wybourne, Stevens, UnitOperators };

enum class EnergyUnit { Wavenumber = 1, MilliElectronVolt = 2, Kelvin = 3, MilliRydberg = 4 };

// Electrostatic parameter form: 1 Racah E^k, 2 Slater F_k, 3 Slater F^k.
enum class SlaterType { RacahE = 1, SlaterFLower = 2, SlaterFUpper = 3 };

// The kinds of correlation crystal field, in the order they are written.
enum class CorrelationKind { Sccf, Lccf, OccfA, OccfB };

struct CorrelationSection {
    CorrelationKind kind = CorrelationKind::Sccf;
    std::vector<CrystalFieldRow> rows;
    friend bool operator==(const CorrelationSection&, const CorrelationSection&) = default;
};

// Switches of the option line (found by substring, order free).
struct RunSwitches {
    bool opimkpk = false;
    bool noSpinSpin = false;         // "/noss"
    bool wrongRankSpinSpin = false;  // "/wrongrankss"
    bool t2Correction = false;       // "/t2correction"
    bool useZic = false;             // "/usezic"
    bool actualShell = false;        // "/actualshell"
    int irNotation = 1;              // "/IRnotation= n", 1..4
    bool properRotationIrreps = false;  // "/IRproper": improper elements act as their proper part
    bool detailedProperties = false;    // "/detailedproperties"
    EnergyUnit energyUnit = EnergyUnit::Wavenumber;  // "/Eunit=n"
    bool cubicCF = false;            // "/cubiccf"
    std::optional<int> pointGroup;   // "/ptgp= n"
    std::optional<int> minSpinMultiplicity;  // "/spinmmin= n"
    bool printHamiltonian = false;   // "/printhm"
    bool correlationSections = false;  // "/ccf"
    friend bool operator==(const RunSwitches&, const RunSwitches&) = default;
};

// One row of the fit set-up (docs/parameter-file.md, Fit options): the
// parameter by the name the fit uses ("F2", "ZETA", "B43", "ImB43"), its
// option (1 free, 0 fixed, -1 linked; any 16-bit value is kept, the fit
// reports the others) and, for option -1, the parameter it is linked to.
struct FitSetupRow {
    std::string name;
    int option = 0;
    std::string linkedTo;
    friend bool operator==(const FitSetupRow&, const FitSetupRow&) = default;
};

struct ParameterSet {
    int version = 2;  // 1: no header line; 2: quoted header line
    std::string title = "Tb3+";  // text left of the first "{" of the title line, trimmed
    std::string note;            // text between "{" and the first "}" after it
    std::string description;
    SlaterType slaterType = SlaterType::SlaterFUpper;
    // Average energy, three electrostatic parameters, zeta: read by position.
    std::array<FreeIonRow, 5> mainFreeIon;
    std::string electronCountLabel = "No. of electrons";
    int electronCount = 0;
    std::string foldLabel = "Fold of symmetry axis";
    int fold = 1;
    std::vector<FreeIonRow> otherFreeIon;
    CfConvention cfConvention = CfConvention::Wybourne;
    std::vector<CrystalFieldRow> crystalField;
    std::vector<CorrelationSection> correlationCF;
    bool hasOptionLine = false;
    std::string optionLine;  // as read; the writer rebuilds it from `switches`
    RunSwitches switches;
    std::vector<FitSetupRow> fitSetup;  // the optional final "Fit options" section
    friend bool operator==(const ParameterSet&, const ParameterSet&) = default;
};

}  // namespace orvane
