#pragma once
// The fitting workspace: the three tables a least-squares fit works on
// (parameters, observed levels, observed g-factors) and its settings
// (docs/fitting.md). Plain data; the fit cycle (fit/fit_cycle.hpp) reads and
// updates it, the command line and the desktop show it.
//
// Energies are in the parameter set's energy unit; a state number is the
// 1-based number of a calculated state in ascending energy (each state of a
// degenerate level has its own number; either may be named).
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "engine/parameter_registry.hpp"

namespace orvane {

// Values of the option column.
inline constexpr std::int16_t kFitOptionFree = 1;
inline constexpr std::int16_t kFitOptionFixed = 0;
inline constexpr std::int16_t kFitOptionLinked = -1;

// One row of the parameter table.
struct FitParameter {
    std::string name;  // as in the parameter file: "F2", "ZETA", "M2", "B43", "ImB43"
    ParameterId id = 0;
    double initial = 0.0;   // when the workspace was filled
    double previous = 0.0;  // before the last fit
    double finalFit = 0.0;  // after the last fit: what the engine runs with
    std::int16_t option = kFitOptionFixed;  // 1 free, 0 fixed, -1 linked ("is related to" linkedTo)
    std::string linkedTo;   // name of the master row of a linked parameter
    // A linked row moves with its master: value = linkRatio x master. Taken
    // from a multiple written in the parameter file ("0.56M0"), otherwise
    // the ratio of the two initial values.
    std::optional<double> linkRatio;
};

enum class LabelColour { None, LightBlue, Red };

// The three parts of a state label: LS term, J and the crystal-field
// irreducible representation (here the crystal quantum number mu, written as
// a fraction: "1/2", "-3/2", "1"). Text form "4I9/2" or "4I9/2(3/2)".
struct StateLabel {
    std::string term;    // "4I", "2D1"; empty when unknown
    int twiceJ = -1;     // -1 when unknown
    std::string irrep;   // empty when unknown
    friend bool operator==(const StateLabel&, const StateLabel&) = default;
};

// One row of the level table.
struct ObservedLevel {
    int stateNumber = 0;  // 1-based; 0 = not assigned
    std::string stateLabel;
    bool adopted = false;  // label taken over from the calculation
    double observedEnergy = 0.0;
    bool withheld = false;  // written "[E]": shown and compared, not fitted
    double calculatedEnergy = 0.0;
    double energyDifference = 0.0;  // "E_Diff.": observed - calculated
    double fitError = 0.0;          // "Fit_Err"
    LabelColour colour = LabelColour::None;
};

enum class GComponent { X, Y, Z };

// One row of the g-factor table. For a doublet split into two close states
// (non-Kramers quasi-doublet) the z value is gz = gz1 + gz2.
struct ObservedGFactor {
    int stateNumber = 0;  // either state of the doublet, 1-based
    std::string label;
    GComponent component = GComponent::Z;
    double observed = 0.0;
    double calculated = 0.0;
    double difference = 0.0;  // observed - calculated
};

enum class FitScope { FreeIonOnly, CrystalFieldOnly, All };
enum class CorrelationFitHandling { FixAll, FreeAll, InternalLink, LinkWithCrystalField };
enum class FitErrorMethod { Discrepancies, ExperimentalErrors };

// Settings of the options menus; defaults documented in docs/fitting.md.
struct FitSettings {
    int maxIterations = 30;          // Ultimate Fit; 0 = no limit ("Infinity")
    double scalingFactor = 1.0;      // step multiplier, > 0
    double gWeight = 0.0;            // 0 = automatic
    int maxLevels = 150;             // different levels to consider; 0 = all
    double convergenceLimit = 0.01;  // on |RMS(n) - RMS(n-1)|, energy unit
    double referenceRmsDev = 20.0;   // deviation scale of the diagnosis colours
    double nearMatchPercent = 75.0;  // AutoMatch nearly-match threshold, (0, 100]
    double minorStateRatio = 0.7;    // AutoMatch adoption ratio of minor states, (0, 1]
    double termWeight = 100.0;       // AutoMatch label weights
    double jWeight = 100.0;
    double irrepWeight = 50.0;
    double propertyAccuracy = 1e-5;
    // Uncertainty of every observed energy (energy unit) for the error
    // column "Error (based on input)" and the method "Experimental errors in
    // observed energies".
    double observedEnergyError = 1.0;
    bool computeFitErrors = false;
    bool autoMatch = false;
    bool automaticUpdate = true;
    FitScope scope = FitScope::All;
    bool fitGFactors = false;
    bool automaticGWeight = false;  // automatic also when gWeight is 0
    CorrelationFitHandling correlation = CorrelationFitHandling::FixAll;
    FitErrorMethod errorMethod = FitErrorMethod::Discrepancies;
    bool reportValues = true;
    bool reportErrors = false;
    bool reportCorrelations = false;
};

// What the fit runs: a real or complex crystal-field model, or the free ion.
enum class FitKind { RealCrystalField, ComplexCrystalField, FreeIon };

struct FitWorkspace {
    std::string parameterFileName;  // shown in the title "CF Fitting -" + name
    FitKind kind = FitKind::RealCrystalField;
    std::vector<FitParameter> parameters;
    std::vector<ObservedLevel> levels;
    std::vector<ObservedGFactor> gFactors;
    FitSettings settings;
    double rmsDeviation = 0.0;   // "RMS Dev." of the last run
    double standardError = 0.0;  // "S.E."
    double rmsDeviationG = 0.0;  // "RMS Dev. of g"
};

}  // namespace orvane
