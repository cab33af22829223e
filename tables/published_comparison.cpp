#include "tables/published_comparison.hpp"

#include <algorithm>

#include <fmt/format.h>

#include "core/atomic_file.hpp"
#include "core/user_error.hpp"
#include "tables/magnetic_tables.hpp"
#include "tables/table_directory.hpp"
#include "tables/three_body_tables.hpp"

namespace orvane {

namespace {

constexpr const char* kTermListsDiffer = "  the term list of the published file differs from the generated one";

bool isUnitTensorTable(const std::string& table) {
    return table == "CFP" || table.rfind("U(", 0) == 0 || table.rfind("V(", 0) == 0;
}
bool isElectrostaticTable(const std::string& table) { return table.rfind("f(", 0) == 0; }

bool inCheck(const std::string& table, PublishedCheck check) {
    return check == PublishedCheck::Electrostatic ? isElectrostaticTable(table) : isUnitTensorTable(table);
}

// Detail lines of the one-body (CFP, U, V) or electrostatic part of a comparison.
std::vector<std::string> oneAndTwoBodyDetails(const ConfigurationComparison& c, PublishedCheck check) {
    if (!c.termsAgree) return {kTermListsDiffer};
    return comparisonDetailLines(c, [check](const std::string& table) { return inCheck(table, check); });
}

bool agreesIn(const ConfigurationComparison& c, PublishedCheck check) {
    if (!c.termsAgree) return false;
    return std::none_of(c.mismatches.begin(), c.mismatches.end(),
                        [&](const ElementDifference& e) { return inCheck(e.table, check); });
}

}  // namespace

std::vector<PublishedConfigurationResult> comparePublishedChain(
    int highest, const std::function<std::filesystem::path(int)>& fileOf, bool manyBody) {
    const auto generated = generateConfigurations(7);
    // Three-body and magnetic operators (escalated from f^2, f^3), when a shell above f^1 is compared.
    manyBody = manyBody && highest >= 2;
    const auto lower = manyBody ? lowerConfigurationTables(generated) : std::vector<ConfigurationTables>{};
    const auto threeBody = manyBody ? threeBodyOperatorsOfAll(lower) : std::vector<ThreeBodyOperators>{};
    const auto magnetic = manyBody ? magneticOperatorsOfAll(lower) : std::vector<MagneticOperators>{};
    std::vector<PublishedConfigurationResult> results;
    Eigen::MatrixXd previous = Eigen::MatrixXd::Identity(1, 1);
    for (int n = 1; n <= highest; ++n) {
        const auto file = fileOf(n);
        const auto published = parsePublishedTables(readTextFile(file), file.string());
        const auto tables = computeConfigurationTables(n, generated);
        PublishedConfigurationResult result;
        result.file = file;
        result.tables = compareConfiguration(tables, published, previous);
        result.hasElectrostatic = published.hasElectrostatic;
        previous = result.tables.transformation;
        const auto index = static_cast<std::size_t>(n);
        if (manyBody && result.tables.termsAgree && n >= 2 && published.hasThreeBody)
            result.threeBody = compareThreeBodyColumns(tables, published, result.tables.transformation,
                                                       threeBody[index], racahE3(tables));
        if (manyBody && result.tables.termsAgree && n >= 2 && published.hasMagnetic)
            result.magnetic = compareMagneticColumns(tables, published, result.tables.transformation, magnetic[index]);
        results.push_back(std::move(result));
    }
    return results;
}

std::vector<std::string> publishedCheckLines(const PublishedConfigurationResult& r, PublishedCheck check,
                                             bool details) {
    const int n = r.tables.electrons;
    std::vector<std::string> lines;
    switch (check) {
        case PublishedCheck::UnitTensorsAndSpinOrbit: {
            if (details) lines = oneAndTwoBodyDetails(r.tables, check);
            lines.push_back(agreesIn(r.tables, check)
                                ? "No mismatch found for U(k) and spin-orbit interaction in Torvelde file!!"
                                : "Some mismatch found for U(k) and spin-orbit interaction RME  in Torvelde file!!");
            lines.push_back(fmt::format("Finished comparing reduced matrix elements of  U(k) and V(11) operators for f{}", n));
            break;
        }
        case PublishedCheck::Electrostatic:
            if (!r.hasElectrostatic) {
                lines.push_back(fmt::format("No E-S block for f{} in {}", n, r.file.string()));
                break;
            }
            if (details) lines = oneAndTwoBodyDetails(r.tables, check);
            lines.push_back(agreesIn(r.tables, check)
                                ? "No mismatch found for 2-particle electrostatic interaction in Torvelde file!!"
                                : "Some mismatch found for 2-particle electrostatic interaction RME  in Torvelde file!!");
            break;
        case PublishedCheck::ThreeBody:
        case PublishedCheck::MkPk: {
            const bool three = check == PublishedCheck::ThreeBody;
            const auto& many = three ? r.threeBody : r.magnetic;
            if (!many) {
                lines.push_back(r.tables.termsAgree ? fmt::format("No {} block for f{} in {}", three ? "E-S" : "MK,PK",
                                                                  n, r.file.string())
                                                    : kTermListsDiffer);
                lines.push_back(fmt::format("Finished comparing reduced matrix elements of  {} operators for f{}",
                                            three ? "ti" : "mk and pk", n));
                break;
            }
            auto all = manyBodyReportLines(*many, three ? "three-body" : "magnetic");
            if (details)
                lines = all;
            else
                lines.push_back(all.back());
            break;
        }
    }
    return lines;
}

bool publishedCheckAgrees(const PublishedConfigurationResult& r, PublishedCheck check) {
    switch (check) {
        case PublishedCheck::ThreeBody: return r.tables.termsAgree && (!r.threeBody || r.threeBody->mismatches.empty());
        case PublishedCheck::MkPk: return r.tables.termsAgree && (!r.magnetic || r.magnetic->mismatches.empty());
        default: return agreesIn(r.tables, check);
    }
}

std::filesystem::path publishedFileIn(const std::filesystem::path& folder, int n) {
    const std::string name = "f" + std::to_string(n) + "cross";
    const auto file = findCaseBlind(folder, name);
    if (!file)
        throw UserError("Error in comparing tables", "published table " + name + " not found in " + folder.string());
    return *file;
}

bool comparePublishedTables(const std::filesystem::path& directory, const std::vector<int>& electrons,
                            LogBook& log) {
    std::filesystem::path folder = directory;
    if (std::filesystem::is_directory(directory / "fncross")) folder = directory / "fncross";
    const int highest = electrons.empty() ? 0 : *std::max_element(electrons.begin(), electrons.end());
    const auto results = comparePublishedChain(highest, [&](int n) { return publishedFileIn(folder, n); });
    bool allAgree = true;
    int publishedErrors = 0;
    for (const auto& r : results) {
        const int n = r.tables.electrons;
        if (std::find(electrons.begin(), electrons.end(), n) == electrons.end()) continue;
        for (const auto& line : comparisonReportLines(r.tables)) log.appendLine(line);
        publishedErrors += static_cast<int>(r.tables.publishedErrors.size());
        for (const auto check : {PublishedCheck::UnitTensorsAndSpinOrbit, PublishedCheck::Electrostatic})
            for (const auto& line : publishedCheckLines(r, check, false)) log.appendLine(line);
        for (const auto check : {PublishedCheck::ThreeBody, PublishedCheck::MkPk}) {
            const auto& many = check == PublishedCheck::ThreeBody ? r.threeBody : r.magnetic;
            if (!many) continue;
            for (const auto& line : publishedCheckLines(r, check, true)) log.appendLine(line);
            publishedErrors += static_cast<int>(many->publishedErrors.size());
        }
        for (const auto check : {PublishedCheck::UnitTensorsAndSpinOrbit, PublishedCheck::Electrostatic,
                                 PublishedCheck::ThreeBody, PublishedCheck::MkPk})
            allAgree = allAgree && publishedCheckAgrees(r, check);
    }
    if (allAgree)
        log.appendLine(fmt::format("No mismatch found in any configuration compared ({} published errors listed)",
                                   publishedErrors));
    else
        log.appendLine("Some mismatch found: see the lines above");
    return allAgree;
}

}  // namespace orvane
