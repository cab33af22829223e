#pragma once
// The general output (".gen") of a run: the readable report, section by
// section, in the order the run driver writes them. Each function appends
// its section's lines to a log book (the .gen file's, or a memory one).
// Energies are in the parameter set's unit with the run's energy shift added.
#include <array>
#include <string>
#include <vector>

#include "core/log_book.hpp"
#include "core/physical_constants.hpp"
#include "engine/barycentre_shift.hpp"
#include "engine/free_ion_contributions.hpp"
#include "engine/j_multiplet_elements.hpp"
#include "engine/level_labels.hpp"
#include "engine/parameter_set.hpp"

namespace orvane {

// Energies closer than this (unit of the set) count as one degenerate level.
inline constexpr double kDegeneracyTolerance = 1e-4;

// Landé g of |S L J> with g_s = kElectronSpinG (Condon & Shortley (1935), ch. XVI):
// g_J = 1 + (g_s - 1)(J(J+1) + S(S+1) - L(L+1)) / (2J(J+1)); 0 for J = 0.
double landeG(int twiceS, int L, int twiceJ);

// gJ of a free-ion level: sum over its multiplets of weight x Landé g (the
// operator L + g_s S is diagonal in S and L).
double levelGFactor(const ResultLevel& level, const ResultBasis& basis, const std::vector<EngineTerm>& terms);

// The second form (" Orvane: Solution of the Hamiltonian for any f-state ions")
// heads runs with "/detailedproperties".
void writeBanner(LogBook& out, const std::string& version, bool solutionForm = false);

// The parameter file as the engine echoes it.
void writeParameterEcho(LogBook& out, const ParameterSet& set);

// "Cumulative state no. and Energy  (original statevector no.)", five to a line.
void writeCumulativeEnergies(LogBook& out, const std::vector<ResultLevel>& levels, double shift);

// Free-ion run: "State     Energy    gJ-factor   Largest Statevectors" (three largest).
void writeFreeIonLevelTable(LogBook& out, const std::vector<ResultLevel>& levels, const ResultBasis& basis,
                            const std::vector<EngineTerm>& terms, double shift);

// Crystal-field run: the free-ion levels with "State     Energy     J    gJ-factor" (J as 2J under "##/2").
void writeFreeIonJTable(LogBook& out, const std::vector<ResultLevel>& levels, const ResultBasis& basis,
                        const std::vector<EngineTerm>& terms, double shift);

// "Statevector: " n and every stored component (|c| >= the run's minimum) of the `count` lowest levels.
void writeStatevectors(LogBook& out, const std::string& heading, const std::vector<ResultLevel>& levels,
                       const ResultBasis& basis, int count, double shift);

// "#### State labels: ..." one line per basis state.
void writeStateLabels(LogBook& out, const ResultBasis& basis);

// Degenerate groups of the sorted levels: start index and size.
struct DegenerateGroup {
    int first = 0;
    int size = 0;
};
std::vector<DegenerateGroup> degenerateGroups(const std::vector<ResultLevel>& levels);

// "*No. (State) [Eigen]  Label SLJ  mu/IR  Splitting  deg.": one line per degenerate level.
void writeLevelTable(LogBook& out, const std::vector<ResultLevel>& levels, int fold, double shift);

// The g-factors of one doublet (state numbers 0-based, principal values along x, y, z).
struct DoubletGValues {
    int first = 0;
    int second = 0;
    std::array<double, 3> g{};
};

// "/detailedproperties": "Detailed properties of the levels" with, per state,
// its number, energy, label, irreducible representation (or mu), <J_z> and, on
// the first state of each doublet, gx, gy, gz.
void writeDetailedProperties(LogBook& out, const std::vector<ResultLevel>& levels, int fold,
                             const std::vector<DoubletGValues>& doublets, double shift);

// "J-multiplet       <||C(2)||>  <||C(4)||>  <||C(6)||>" and the correlation
// columns (" <||VS(2)||>" ...) when present; values "###0.00000".
void writeMultipletElements(LogBook& out, const std::vector<MultipletElements>& elements,
                            const std::vector<ResultLevel>& freeIonLevels);

// "CF Rotational invariants sk: " s2 s4 s6.
void writeInvariants(LogBook& out, const std::array<double, 3>& s);

void writeBarycentreShifts(LogBook& out, const std::vector<BarycentreShift>& shifts, double shift);

// Per-level shares of every interaction in each free-ion level.
void writeContributions(LogBook& out, const std::vector<FreeIonLevelContributions>& contributions);

}  // namespace orvane
