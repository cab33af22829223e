#include "interactive/table_build_dialogs.hpp"

#include "interactive/interactive_generators.hpp"
#include "tables/lccf_table.hpp"
#include "tables/occf_table.hpp"
#include "tables/table_builder.hpp"

namespace orvane {

namespace {

std::string operatorText(TableBuild kind) {
    switch (kind) {
    case TableBuild::Everything: return "all";
    case TableBuild::UnitTensors: return "U(k) unit tensor operators";
    case TableBuild::DoubleTensors: return "V(1k) double tensor operators";
    case TableBuild::Electrostatic: return "f(k) electrostatic operators";
    case TableBuild::ManyBody: return "ti, zi (Hss), mk and pk operators";
    case TableBuild::CorrelationLccf: return "LCCF UK operators";
    case TableBuild::CorrelationOccf: return "OCCF g(K)10A and g(K)10B operators";
    }
    return {};
}

void buildOneConfiguration(TableBuild kind, int n, const std::filesystem::path& directory, LogBook& log) {
    // Every generator reads the term basis and parentage of f^n and of the configurations below it.
    for (int m = 1; m <= n; ++m) ensureConfigurationTables(m, directory, log);
    switch (kind) {
    case TableBuild::UnitTensors:
        for (int k = 1; k <= 6; ++k) BuildUnitTensorTable(n, false, k, directory, log);
        break;
    case TableBuild::DoubleTensors:
        for (int k = 0; k <= 7; ++k) BuildUnitTensorTable(n, true, k, directory, log);
        break;
    case TableBuild::Electrostatic:
        for (int k : {2, 4, 6}) BuildCoulombTable(n, k, directory, log);
        break;
    case TableBuild::CorrelationLccf:
        for (int k : {2, 4, 6}) BuildLccfTable(n, k, directory, log);
        break;
    case TableBuild::CorrelationOccf:
        for (int k : {2, 4, 6})
            for (char variant : {'A', 'B'}) BuildOccfTable(n, k, variant, directory, log);
        break;
    default: break;
    }
}

}  // namespace

std::string tableBuildPrompt(TableBuild kind) {
    if (kind == TableBuild::Everything) return "Give no. of f-shell electron to build all tables";
    return "Give no. of f-shell electron to build the " + operatorText(kind) + " reduced matrix elements";
}

void buildTables(TableBuild kind, const std::vector<int>& electrons, const std::filesystem::path& directory,
                 LogBook& log) {
    const int count = static_cast<int>(electrons.size());
    if (kind == TableBuild::Everything) {
        const auto generated = generateConfigurations(7);
        int done = 0;
        for (int n : electrons) {
            writeConfigurationTables(computeConfigurationTables(n, generated), directory, log);
            log.progress(LogCategory::Tables, "configuration tables", ++done, count);
        }
        writeManyBodyTables(electrons, lowerConfigurationTables(generated), directory, log);
        return;
    }
    if (kind == TableBuild::ManyBody) {
        writeManyBodyTables(electrons, lowerConfigurationTables(generateConfigurations(7)), directory, log);
        return;
    }
    int done = 0;
    for (int n : electrons) {
        buildOneConfiguration(kind, n, directory, log);
        log.progress(LogCategory::Tables, operatorText(kind), ++done, count);
    }
}

bool buildTablesAsking(TableBuild kind, Asker& asker, LogBook& log, const std::filesystem::path& directory) {
    const auto n = askElectronCountWith(asker, log, tableBuildPrompt(kind));
    if (!n) return false;
    buildTables(kind, {*n}, directory, log);
    return true;
}

}  // namespace orvane
