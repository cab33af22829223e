#pragma once
// Builds every table of a configuration f^n (n = 1..14) in memory and writes
// them into a table directory: the state labels, the coefficients of fractional
// parentage, U(k) (k = 2, 4, 6), V(1k) (k = 1, 2, 4, 6) and f(k) (k = 2, 4, 6).
// f^1..f^7 come from the first-principles generator, f^8..f^14 from the
// complementarity relation applied to them. Output is deterministic.
#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include <Eigen/Dense>

#include "core/log_book.hpp"
#include "tables/reduced_tables.hpp"
#include "tables/state_labels.hpp"
#include "tables/term_generator.hpp"

namespace orvane {

struct ConfigurationTables {
    int electrons = 0;
    std::vector<TermLabelLine> termLines;   // as written to fNstate.lab
    std::vector<TermRecord> terms;
    std::vector<TermRecord> parents;        // terms of f^(n-1)
    Eigen::MatrixXd cfp;                    // terms x parents
    std::array<Eigen::MatrixXd, 7> unitTensor;    // U(k), k = 0..6, full matrices
    std::array<Eigen::MatrixXd, 7> doubleTensor;  // V(1k), k = 0..6
    std::array<Eigen::MatrixXd, 3> coulomb;       // f(2), f(4), f(6)
};

// Term lines of f^n (n = 0..14; f^N above 7 are those of f^(14-N)).
std::vector<TermLabelLine> termLinesOf(const GeneratedConfiguration& configuration);
std::vector<TermRecord> termRecordsOf(const std::vector<TermLabelLine>& lines);

// All tables of f^n; `generated` holds f^0..f^7 from generateConfigurations(7).
ConfigurationTables computeConfigurationTables(int n, const std::vector<GeneratedConfiguration>& generated);

// Title lines (each carries the generator version).
std::string stateLabelTitle(int n);
std::string parentageTitle(int n);
std::string reducedTableTitle(const std::string& operatorText, int n);

// Writes the tables the engine needs for f^n into `directory`; logs one line
// per file written. Returns the paths written.
// With `onlyMissing`, files already present in the current version are kept.
std::vector<std::filesystem::path> writeConfigurationTables(const ConfigurationTables& tables,
                                                            const std::filesystem::path& directory,
                                                            LogBook& log, bool onlyMissing = false);
// Writes the delivered data fNstate.lab and fNcfp.val, n = 1..7.
std::vector<std::filesystem::path> writeDeliveredTables(
    const std::vector<GeneratedConfiguration>& generated, const std::filesystem::path& directory,
    LogBook& log);

// The directory that holds (or will hold) the tables of f^n: `directory` when
// every table is there or it is writable, else the per-user cache. Missing
// tables (or tables written by another generator version) are generated there
// first. Returns the directory to read from.
std::filesystem::path ensureConfigurationTables(int n, const std::filesystem::path& directory,
                                                LogBook& log);

// The inputs of every one-electron table of f^n stored in a table directory:
// the terms of f^n and f^(n-1) (as S, L) and the CFP matrix (terms x parents).
struct StoredParentage {
    std::vector<TermSpinOrbit> terms;
    std::vector<TermSpinOrbit> parents;
    Eigen::MatrixXd cfp;
};
StoredParentage readStoredParentage(int n, const std::filesystem::path& directory, LogBook& log);

// Table generators working from the files of the table directory (state
// labels of f^n and f^(n-1), coefficients of f^n; f(k) from the stored U(k)
// table completed with the transposition phase). Each writes its file
// "fN" + tableFileName(...) into the directory and returns its path; the
// Coulomb build also logs the trace checks of e1, e2, e3 when f(2), f(4) and
// f(6) can all be formed. Throw UserError for missing or malformed files.
std::filesystem::path BuildUnitTensorTable(int n, bool doubleTensor, int k, const std::filesystem::path& directory,
                                           LogBook& log);
std::filesystem::path BuildCoulombTable(int n, int k, const std::filesystem::path& directory, LogBook& log);

// The file names of f^n the engine reads, in the order written.
std::vector<std::string> configurationTableNames(int n);

}  // namespace orvane

namespace orvane {

// The tables of f^0..f^7 (f^0 empty), from which every many-body table is escalated.
std::vector<ConfigurationTables> lowerConfigurationTables(const std::vector<GeneratedConfiguration>& generated);

// Writes the three-body files "meti.val", "rmtic.val" and the magnetic files
// "rmziss.val", "mess.val", "rmzic.val", "mesooci.val", "memkpk.val" (with their
// listings) of every f^n of `electrons` (each 1..14) into `directory`, logging
// the start and finish lines of each generator. `lower` is
// lowerConfigurationTables(...); the operators are escalated once for all n.
// Throws std::invalid_argument for an n outside 1..14 (before writing anything).
std::vector<std::filesystem::path> writeManyBodyTables(const std::vector<int>& electrons,
                                                       const std::vector<ConfigurationTables>& lower,
                                                       const std::filesystem::path& directory, LogBook& log);

}  // namespace orvane
