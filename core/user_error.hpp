#pragma once
// The error a user-level operation reports: a category naming what was being
// done, shown as its title ("Error in Main", "Error in real CF main program",
// ...), and the message the user reads. Code that reacts to an error branches
// on the category, never on the title text. Numeric routines never throw it;
// they return neutral values and the operation that called them decides what
// to tell the user.
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace orvane {

// One value per title shown to the user.
enum class ErrorCategory {
    Other,                     // a title not in this list (kept as given)
    Main,                      // "Error in Main"
    RealEngine,                // "Error in real CF main program"
    ComplexEngine,             // "Error in main program for complex CF"
    CrystalFieldHamiltonian,   // "Error in CF Hamiltonian"
    CrystalFieldFile,          // "Error in Crystal Field Parameters file"
    CrystalFieldTable,         // "Error in Crystal Field Parameters Table"
    CorrelationCrystalField,   // "Input CCF data file error"
    SavingParameters,          // "Error in saving parameters"
    Tables,                    // "Error in building tables"
    BuildingParentage,         // "Error in building CFP"
    ReadingParentage,          // "Error in reading CFP"
    ReadingStateLabels,        // "Error in reading State labels"
    ReadingReducedElements,    // "Error in reading reduced matrix elements"
    PublishedTables,           // "Error in reading published tables"
    ComparingTables,           // "Error in comparing tables"
    ComparingEnergies,         // "Error in comparing energies"
    SortingEnergies,           // "Error in sorting energies"
    StoringEnergies,           // "Error in storing up energies"
    EigenSolver,               // "Error in eigen solver"
    CfpConversion,             // "Error in CFP conversion"
    EnergyUnitConversion,      // "Error in energy unit conversion"
    ParameterConversion,       // "Error in parameter conversion"
    LigandPositions,           // "Error in setting up ligand positions"
    ReadingLigands,            // "Error in reading ligand positions"
    ReadingSuperpositionData,  // "Error in reading superposition model data"
    SuperpositionModel,        // "Error in SM estimation"
    SuperpositionSum,          // "Superposition Model calculation CFP Bkq and their derivative error"
    CfRotation,                // "Rotation of Crystal Field Parameters"
    GarnetRotation,            // "Rotation of Crystal Field Parameters for Equivalent Sites in Garnets"
    ImaginaryRotation,         // "Rotation to set ImBkq=0"
    File,                      // "File error"
    LogBook,                   // "Log Book"
};

// The displayed title of a category ("" for Other).
std::string_view errorTitle(ErrorCategory category);
// The category of a displayed title; Other for a title not in the list.
ErrorCategory errorCategoryOfTitle(std::string_view title);

// Where in a text file a problem was found (1-based line number).
struct FileLocation {
    std::string file;
    int line = 0;
};

// The message as shown: control bytes echoed from a damaged file (NUL, ESC,
// CR, ...) are written as "\xNN" so that they cannot garble a terminal or a
// log; line breaks and tabs are kept.
std::string printableMessage(const std::string& message);

class UserError : public std::runtime_error {
public:
    UserError(ErrorCategory category, const std::string& message,
              std::optional<FileLocation> where = std::nullopt)
        : std::runtime_error(printableMessage(message)), category_(category), title_(errorTitle(category)),
          where_(std::move(where)) {}
    // A title given as text: its category is looked up (Other when unknown).
    UserError(std::string title, const std::string& message,
              std::optional<FileLocation> where = std::nullopt)
        : std::runtime_error(printableMessage(message)), category_(errorCategoryOfTitle(title)), title_(std::move(title)),
          where_(std::move(where)) {}
    UserError(const char* title, const std::string& message,
              std::optional<FileLocation> where = std::nullopt)
        : UserError(std::string(title), message, std::move(where)) {}

    ErrorCategory category() const { return category_; }
    const std::string& title() const { return title_; }
    const std::optional<FileLocation>& where() const { return where_; }
    // "file:line: message" when the location is known, else the message.
    std::string describe() const {
        if (!where_) return what();
        return where_->file + ":" + std::to_string(where_->line) + ": " + what();
    }

private:
    ErrorCategory category_;
    std::string title_;
    std::optional<FileLocation> where_;
};

}  // namespace orvane
