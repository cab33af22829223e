#pragma once
// Edits of the fitting workspace's level table that change observed
// energies as a whole (menu "Edit" of the workspace).
#include <vector>

#include "fit/fit_workspace.hpp"

namespace orvane {

// "Set 0 for Obs. Energies": the lowest observed energy becomes the zero of
// energy (every observed energy minus it). Nothing for an empty table.
void setZeroOfObservedEnergies(std::vector<ObservedLevel>& levels);

// "Convert Energies to CF Splittings": each multiplet's observed energies
// (rows of one LS term and J, read from the label) are taken from the lowest
// of them, so that each multiplet starts at 0. Rows whose label names no
// term and J are left as they are.
void convertToCrystalFieldSplittings(std::vector<ObservedLevel>& levels);

// "Sort Energy Table Column": the rows in ascending (or descending) order of
// their observed energies; rows of equal energy keep their order.
void sortByObservedEnergy(std::vector<ObservedLevel>& levels, bool ascending);

}  // namespace orvane
