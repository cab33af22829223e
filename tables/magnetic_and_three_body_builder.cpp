// Generation of the three-body and magnetic table files of f^n for the table
// builder: both need the operators of the lower configurations (escalation
// from f^2 and f^3), so they are built from the tables of f^0..f^7 at once.
#include "tables/magnetic_tables.hpp"
#include "tables/table_builder.hpp"
#include "tables/three_body_tables.hpp"

#include <filesystem>
#include <stdexcept>

namespace orvane {

namespace {
constexpr int kHighestLowerShell = 7;
constexpr int kShellCapacity = 14;
}  // namespace

std::vector<ConfigurationTables> lowerConfigurationTables(const std::vector<GeneratedConfiguration>& generated) {
    std::vector<ConfigurationTables> result(1);  // f^0 holds no tables
    for (int n = 1; n <= kHighestLowerShell; ++n) result.push_back(computeConfigurationTables(n, generated));
    return result;
}

std::vector<std::filesystem::path> writeManyBodyTables(const std::vector<int>& electrons,
                                                       const std::vector<ConfigurationTables>& lower,
                                                       const std::filesystem::path& directory, LogBook& log) {
    if (lower.size() <= static_cast<std::size_t>(kHighestLowerShell))
        throw std::invalid_argument("writeManyBodyTables: the tables of f^0..f^7 are needed");
    for (int n : electrons)
        if (n < 1 || n > kShellCapacity) throw std::invalid_argument("writeManyBodyTables: f^n with n in 1..14");
    std::filesystem::create_directories(directory);
    const auto threeBody = threeBodyOperatorsOfAll(lower);
    const auto magnetic = magneticOperatorsOfAll(lower);
    std::vector<std::filesystem::path> written;
    const int total = static_cast<int>(electrons.size());
    int done = 0;
    log.progress(LogCategory::Tables, "many-body tables", done, total);
    for (int n : electrons) {
        // f^N (N > 7) has the terms (and e3) of f^(14-N).
        const auto& same = lower[static_cast<std::size_t>(n <= kHighestLowerShell ? n : kShellCapacity - n)];
        const std::vector<TermRecord> terms =
            same.terms.empty() ? std::vector<TermRecord>{{"1S", 0, 0, 0}} : same.terms;
        const Eigen::MatrixXd e3 = same.terms.empty() ? Eigen::MatrixXd::Zero(1, 1) : racahE3(same);
        const auto three = writeThreeBodyTables(n, threeBody[static_cast<std::size_t>(n)], e3, directory, log);
        const auto more = writeMagneticTables(n, terms, magnetic[static_cast<std::size_t>(n)], directory, log);
        written.insert(written.end(), three.begin(), three.end());
        written.insert(written.end(), more.begin(), more.end());
        log.progress(LogCategory::Tables, "many-body tables", ++done, total);
    }
    return written;
}

}  // namespace orvane
