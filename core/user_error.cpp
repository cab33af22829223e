#include "core/user_error.hpp"

#include <array>
#include <utility>

namespace orvane {

namespace {

constexpr std::array<std::pair<ErrorCategory, std::string_view>, 32> kTitles = {{
    {ErrorCategory::Main, "Error in Main"},
    {ErrorCategory::RealEngine, "Error in real CF main program"},
    {ErrorCategory::ComplexEngine, "Error in main program for complex CF"},
    {ErrorCategory::CrystalFieldHamiltonian, "Error in CF Hamiltonian"},
    {ErrorCategory::CrystalFieldFile, "Error in Crystal Field Parameters file"},
    {ErrorCategory::CrystalFieldTable, "Error in Crystal Field Parameters Table"},
    {ErrorCategory::CorrelationCrystalField, "Input CCF data file error"},
    {ErrorCategory::SavingParameters, "Error in saving parameters"},
    {ErrorCategory::Tables, "Error in building tables"},
    {ErrorCategory::BuildingParentage, "Error in building CFP"},
    {ErrorCategory::ReadingParentage, "Error in reading CFP"},
    {ErrorCategory::ReadingStateLabels, "Error in reading State labels"},
    {ErrorCategory::ReadingReducedElements, "Error in reading reduced matrix elements"},
    {ErrorCategory::PublishedTables, "Error in reading published tables"},
    {ErrorCategory::ComparingTables, "Error in comparing tables"},
    {ErrorCategory::ComparingEnergies, "Error in comparing energies"},
    {ErrorCategory::SortingEnergies, "Error in sorting energies"},
    {ErrorCategory::StoringEnergies, "Error in storing up energies"},
    {ErrorCategory::EigenSolver, "Error in eigen solver"},
    {ErrorCategory::CfpConversion, "Error in CFP conversion"},
    {ErrorCategory::EnergyUnitConversion, "Error in energy unit conversion"},
    {ErrorCategory::ParameterConversion, "Error in parameter conversion"},
    {ErrorCategory::LigandPositions, "Error in setting up ligand positions"},
    {ErrorCategory::ReadingLigands, "Error in reading ligand positions"},
    {ErrorCategory::ReadingSuperpositionData, "Error in reading superposition model data"},
    {ErrorCategory::SuperpositionModel, "Error in SM estimation"},
    {ErrorCategory::SuperpositionSum, "Superposition Model calculation CFP Bkq and their derivative error"},
    {ErrorCategory::CfRotation, "Rotation of Crystal Field Parameters"},
    {ErrorCategory::GarnetRotation, "Rotation of Crystal Field Parameters for Equivalent Sites in Garnets"},
    {ErrorCategory::ImaginaryRotation, "Rotation to set ImBkq=0"},
    {ErrorCategory::File, "File error"},
    {ErrorCategory::LogBook, "Log Book"},
}};

}  // namespace

std::string_view errorTitle(ErrorCategory category) {
    for (const auto& [c, title] : kTitles)
        if (c == category) return title;
    return {};
}

ErrorCategory errorCategoryOfTitle(std::string_view title) {
    for (const auto& [c, text] : kTitles)
        if (text == title) return c;
    return ErrorCategory::Other;
}

std::string printableMessage(const std::string& message) {
    static constexpr char kHex[] = "0123456789ABCDEF";
    std::string shown;
    shown.reserve(message.size());
    for (const char c : message) {
        const auto byte = static_cast<unsigned char>(c);
        if ((byte < 0x20 && c != '\n' && c != '\t') || byte == 0x7F) {
            shown += "\\x";
            shown += kHex[byte >> 4];
            shown += kHex[byte & 0xF];
        } else {
            shown += c;
        }
    }
    return shown;
}

}  // namespace orvane
