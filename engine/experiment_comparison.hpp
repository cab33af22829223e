#pragma once
// Observed energies of a published table file against the calculated energies
// of a run of this program.
//
// The published file carries the observed energies in a block headed by a
// line containing "EXPERIMENT"; the lines after it hold the energies (cm^-1),
// one or more per line, separated by blanks (or commas), in ascending order;
// the block ends at a line starting with "END", at the title of the next block
// (a line containing "FOR F") or at the end of the file. Blank lines are skipped.
// The i-th observed energy is paired with the i-th calculated level (levels in
// ascending order, as the energy file lists them); the difference printed is
// observed - calculated with the picture "##0.0##".
#include <string>
#include <string_view>
#include <vector>


namespace orvane {

// Throws UserError ("Error in comparing energies") naming the file and line for
// a missing block, a field that is not a number, or a block without energies.
std::vector<double> parseExperimentBlock(std::string_view text, const std::string& fileName);

struct EnergyDifference {
    int level = 0;  // 1-based
    double observed = 0.0;
    double calculated = 0.0;
    double difference = 0.0;  // observed - calculated
};

struct ExperimentComparison {
    std::vector<EnergyDifference> rows;
    double rmsDifference = 0.0;
    int observedWithoutLevel = 0;  // observed energies beyond the last calculated level
};

ExperimentComparison compareWithExperiment(const std::vector<double>& observed,
                                           const std::vector<double>& calculated);

// The table: heading, one line per pair ("##0.0##" for the difference), the rms.
std::vector<std::string> experimentComparisonLines(const ExperimentComparison& comparison);

}  // namespace orvane
