#pragma once
// Checks the parameter editor makes before it saves a set, as plain
// functions that return the messages to show (empty when all is well).
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/parameter_set.hpp"

namespace orvane {

inline constexpr std::string_view kCrystalFieldTableTitle = "Error in Crystal Field Parameters Table";
inline constexpr std::string_view kInvalidIonTitle = "Invalid ion";
inline constexpr std::string_view kFoldCheckTitle = "Check - Fold of symmetry axis";
inline constexpr std::string_view kFoldQuestion = "Yes/No to update and Save, OR Cancel?";

// One row of the editor's crystal-field grid as typed.
struct CrystalFieldEntry {
    std::string k;
    std::string q;
    std::string re;
    std::string im;  // blank means 0
};

// "No Crystal Field Parameters entered!" for a table without a filled row;
// otherwise one message per bad cell: "Invalid k in entry #" + row (k an
// integer 0..kMaxCrystalFieldRank), "Invalid q in entry #" + row (an integer
// with |q| <= k), "Invalid crystal field value in entry #" + row (Re and Im
// readable as cells; blanks inside a number are ignored). Rows count from 1;
// completely blank rows are skipped but keep their number.
std::vector<std::string> checkCrystalFieldTable(const std::vector<CrystalFieldEntry>& rows);

// The number of f electrons of the ion named at the start of a title such as
// "Er3+", "Pr3+:LaF3", "U4+", "Eu2+ in CaF2" (element symbol compared in upper
// case; charge written "3+", "+3" or "+++"; no charge means 3+).
struct IonElectrons {
    std::optional<int> electrons;  // set when the title names a usable f-shell ion
    std::string message;           // otherwise the reason, shown under kInvalidIonTitle
};
// "Not a f-shell ion: " + title for a symbol outside La..Lu, Ac..Lr;
// "Invalid no. of electron from ion charge = " + count for a count outside 0..14.
IonElectrons electronsFromTitle(std::string_view title);

// The crystallographic point groups (Schoenflies symbols) in the order that
// the "/ptgp= n" switch indexes from 1 (params/point_group.hpp), with the fold
// of the main (z) axis as it acts on the even-rank crystal field: an improper
// axis S_n acts there as a proper rotation (S4 -> 4, S6 -> 3, C3h and D3h ->
// 6, a mirror plane perpendicular to z -> 2). Cubic groups take z along a
// 4-fold axis (O, Oh, Td) or, for T and Th, along a 2-fold axis.
struct PointGroup {
    std::string_view name;
    int fold;
};
const std::vector<PointGroup>& crystallographicPointGroups();
// The group of a 1-based index, or nullptr.
const PointGroup* pointGroupByIndex(int index);

// Compares the fold line of a set with the fold of its selected point group.
struct FoldCheck {
    bool valid = true;                 // false: "Invalid Symmetry Fold"
    std::optional<int> suggestedFold;  // set when the file's fold should change
    std::string message;               // the text to show (empty when all agree)
};
// "Invalid Symmetry Fold" for a fold below 1 or an unknown point-group index;
// "Fold of symmetry axis n should be updated from " old " to " new when they
// differ (then kFoldQuestion is asked under kFoldCheckTitle).
FoldCheck checkFold(int fileFold, int pointGroupIndex);

// The questions about the correlation sections of a set: for a section whose
// row count differs from the number of crystal-field rows, "No. of CCF
// parameters = " n " and not equal to the no. of CF parameters. Continue?";
// for a row whose (k, q) has no crystal-field row, "Incompatible k q = " k " "
// q " for  the row " r ". Continue?" (r counted from 1 within its section).
std::vector<std::string> correlationSectionQuestions(const ParameterSet& set);

// For a set with "/ptgp= n": one warning per crystal-field part (Re or Im of
// B(k,q), k = 2, 4, 6) that is non-zero although the group forbids it in its
// standard orientation: "B43 is forbidden by the site symmetry D4h (standard orientation)".
std::vector<std::string> crystalFieldSymmetryWarnings(const ParameterSet& set);

}  // namespace orvane
