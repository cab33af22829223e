#pragma once
// Generated tables against published tables in the "cross" layout, one file per
// configuration: the chain of configurations (term phases are found from the
// CFPs, each configuration from the one below) and the four checks of a file,
// each with its verdict line: U(k) and spin-orbit (with the CFPs), the
// 2-particle electrostatic matrices, the three-particle operators t_i and the
// m_k, p_k operators.
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/log_book.hpp"
#include "tables/magnetic_comparison.hpp"
#include "tables/table_comparison.hpp"

namespace orvane {

// One configuration compared with its published file: the one- and two-body
// tables (CFP, U, V, f(k)) and, where the file has them, the three-body
// (E-S T2..T8) and magnetic (MK,PK) columns.
struct PublishedConfigurationResult {
    std::filesystem::path file;
    ConfigurationComparison tables;
    bool hasElectrostatic = false;
    std::optional<ManyBodyComparison> threeBody;
    std::optional<ManyBodyComparison> magnetic;
};

// Compares f^1 .. f^highest, the published file of f^m being fileOf(m); the
// term transformation of each configuration is chained from the one below.
// Without `manyBody` the three-body and magnetic columns are not compared
// (their operators take most of the time). Throws UserError for a missing or
// unreadable file.
std::vector<PublishedConfigurationResult> comparePublishedChain(
    int highest, const std::function<std::filesystem::path(int)>& fileOf, bool manyBody = true);

// "fNcross" in `folder` (names compared case-blind); UserError when absent.
std::filesystem::path publishedFileIn(const std::filesystem::path& folder, int n);

// The four checks of a published file.
enum class PublishedCheck { UnitTensorsAndSpinOrbit, Electrostatic, ThreeBody, MkPk };

// The lines of one check of one configuration (with `details`, the element
// lines before), ending with its verdict or closing line:
//   U(k)/spin-orbit: "No mismatch found for U(k) and spin-orbit interaction in Torvelde file!!"
//     or "Some mismatch found for U(k) and spin-orbit interaction RME  in Torvelde file!!",
//     then "Finished comparing reduced matrix elements of  U(k) and V(11) operators for f" n;
//   electrostatic: "No mismatch found for 2-particle electrostatic interaction in Torvelde file!!"
//     or "Some mismatch found for 2-particle electrostatic interaction RME  in Torvelde file!!";
//   three-body: "Finished comparing reduced matrix elements of  ti operators for f" n;
//   mk, pk: "Finished comparing reduced matrix elements of  mk and pk operators for f" n.
std::vector<std::string> publishedCheckLines(const PublishedConfigurationResult& result, PublishedCheck check,
                                             bool details);
bool publishedCheckAgrees(const PublishedConfigurationResult& result, PublishedCheck check);

// Compares the generated tables of the configurations `electrons` (1..14) with
// the published files "fNcross" of `directory` (or of its "fncross" folder),
// logging the report lines and a final verdict. Transformations are chained
// from f^1, so every lower configuration is read too. Returns true when no
// mismatch was found. Throws UserError for a missing or unreadable file.
bool comparePublishedTables(const std::filesystem::path& directory, const std::vector<int>& electrons,
                            LogBook& log);

}  // namespace orvane
