#pragma once
// The state-vector file (".ev") of a run: the lowest eigenstates with their
// energies, labels and components over the |SL J MJ> basis (crystal field)
// or the |SL J> basis (free ion), read back by the state-vector analysis
// (g-factors, moments, susceptibility, intensities) and the fitting.
//
// Layout (docs/result-files.md), fields separated by blanks:
//   line 1  title: "State vectors: " parameter-set title
//   line 2  "basis " SLJM|SLJ " states " B " vectors " V " complex " 0|1 " unit " u " shift " s
//   B lines "index term 2S L 2J [2MJ]": the basis states, index 1..B (2MJ only for SLJM)
//   V times "Statevector # n energy count label": state n (1-based, ascending
//           energy), its energy (unit of the set, shift added), the number of
//           component lines that follow and its label;
//           then count lines "index re [im]": basis index and coefficient
//           (im only when complex = 1), components of |c| >= the run's
//           minimum, in decreasing |c|.
#include <complex>
#include <filesystem>
#include <iosfwd>
#include <string>
#include <vector>

#include "engine/level_labels.hpp"

namespace orvane {

struct StateVectorBasisState {
    std::string term;
    int twiceS = 0;
    int L = 0;
    int twiceJ = 0;
    int twiceM = 0;  // 0 for the |SL J> basis
};

struct StoredComponent {
    int basisIndex = 0;  // 0-based into StateVectorFileContents::basis
    std::complex<double> coefficient;
};

struct StoredStateVector {
    int number = 0;  // 1-based, ascending energy
    double energy = 0.0;
    std::string label;
    std::vector<StoredComponent> components;
};

struct StateVectorFileContents {
    std::string title;
    bool withProjections = false;  // SLJM basis
    bool complex = false;
    std::string unit;
    double shift = 0.0;
    std::vector<StateVectorBasisState> basis;
    std::vector<StoredStateVector> vectors;
};

struct StateVectorHeader {
    std::string title;   // of the parameter set
    std::string unit;    // "cm^-1", "meV", ...
    double shift = 0.0;
    bool complex = false;
};

// Writes the `count` lowest levels (all for count <= 0 or beyond the number of levels).
void writeStateVectorText(std::ostream& out, const StateVectorHeader& header, const ResultBasis& basis,
                          const std::vector<EngineTerm>& terms, const std::vector<ResultLevel>& levels, int count);

// Parses the text; throws UserError ("Error in Main") naming the file and line.
StateVectorFileContents parseStateVectorText(const std::string& text, const std::string& fileNameForMessages);

// Reads and parses a file (at most 1 GB).
StateVectorFileContents readStateVectorFile(const std::filesystem::path& path);

}  // namespace orvane
