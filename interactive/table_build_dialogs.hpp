#pragma once
// The table generators of the Tables menu and of `orvane tables build`: each
// kind of table asks one line, the number of f electrons ("Give no. of
// f-shell electron to build the U(k) unit tensor operators reduced matrix
// elements"), then writes its files into the table directory, logging one
// line per file and the stages as progress.
#include <filesystem>
#include <string>
#include <vector>

#include "core/log_book.hpp"
#include "interactive/asker.hpp"

namespace orvane {

enum class TableBuild {
    Everything,       // every table the engine reads for f^n (with the many-body tables)
    UnitTensors,      // U(k), k = 1..6
    DoubleTensors,    // V(1k), k = 0..7
    Electrostatic,    // f(k), k = 2, 4, 6
    ManyBody,         // three-body T^i and the magnetic zi (Hss), M^k and P^k tables
    CorrelationLccf,  // LCCF UK, K = 2, 4, 6
    CorrelationOccf,  // OCCF g(K)10A and g(K)10B, K = 2, 4, 6
};

// The one-line question of a kind.
std::string tableBuildPrompt(TableBuild kind);

// Builds the tables of `kind` for every f^n of `electrons` (each 1..14).
void buildTables(TableBuild kind, const std::vector<int>& electrons, const std::filesystem::path& directory,
                 LogBook& log);

// Asks the number of electrons (until 1..14, "Wrong no. of e- !!!" logged
// otherwise) and builds. False when the question is cancelled.
bool buildTablesAsking(TableBuild kind, Asker& asker, LogBook& log, const std::filesystem::path& directory);

}  // namespace orvane
