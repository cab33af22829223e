// Generated magnetic and three-body operators against the published tables,
// read at run time only: the "MK,PK" blocks of the f^n tables of
// H. Crosswhite (corrected as in Chen, Liu, Margerie & Reid, J. Lumin. 128, 421
// (2008)), the spin-spin reduced elements as tabulated by Lizarazo Ferro, Puel,
// Flatte & Zia, Phys. Rev. B 113, 075127 (2026), and the Hansen, Judd &
// Crosswhite, At. Data Nucl. Data Tables 62, 1 (1996) three-body elements. Term phases (and the rotations inside repeated terms)
// of the published basis are found from the published CFPs by
// compareConfiguration, chained from f1; a published matrix P is compared as
// X P X^T with our matrix.
#include <cmath>
#include <fstream>
#include <map>
#include <sstream>

#include <gtest/gtest.h>

#include "core/atomic_file.hpp"
#include "tables/magnetic_comparison.hpp"
#include "tables/magnetic_tables.hpp"
#include "tables/published_tables.hpp"
#include "tables/table_comparison.hpp"
#include "tables/three_body_tables.hpp"
#include "tests/support/reference_data.hpp"
#include "tests/tables/all_configuration_tables.hpp"

namespace orvane {
namespace {

using test::termIndex;

struct PublishedShell {
    PublishedTables tables;
    Eigen::MatrixXd transformation;  // generated = X * published
};

const std::vector<PublishedShell>& publishedShells(const std::filesystem::path& reference) {
    static const std::vector<PublishedShell> shells = [&] {
        std::vector<PublishedShell> result(1);
        Eigen::MatrixXd previous = Eigen::MatrixXd::Identity(1, 1);
        for (int n = 1; n <= 14; ++n) {
            const auto file = reference / "fncross" / ("f" + std::to_string(n) + "cross");
            PublishedShell shell;
            shell.tables = parsePublishedTables(readTextFile(file), file.string());
            const auto comparison =
                compareConfiguration(test::allConfigurationTables()[static_cast<std::size_t>(n)], shell.tables, previous);
            shell.transformation = comparison.transformation;
            previous = comparison.transformation;
            result.push_back(std::move(shell));
        }
        return result;
    }();
    return shells;
}

// Full matrix from rows stored in either order, with the transposition phase.
Eigen::MatrixXd fullFromRows(const Eigen::MatrixXd& stored, const std::vector<TermSpinOrbit>& terms) {
    Eigen::MatrixXd upper = Eigen::MatrixXd::Zero(stored.rows(), stored.cols());
    for (int i = 0; i < stored.rows(); ++i)
        for (int j = 0; j < stored.cols(); ++j) {
            if (stored(i, j) == 0.0) continue;
            if (i <= j) {
                upper(i, j) = stored(i, j);
            } else {
                const auto& a = terms[static_cast<std::size_t>(i)];
                const auto& b = terms[static_cast<std::size_t>(j)];
                const bool even = (((a.twiceS - b.twiceS) / 2 + a.L - b.L) % 2) == 0;
                upper(j, i) = even ? stored(i, j) : -stored(i, j);
            }
        }
    return completeFromStoredHalf(upper, terms);
}

Eigen::MatrixXd inOurBasis(const Eigen::MatrixXd& published, const Eigen::MatrixXd& x) {
    return x * published * x.transpose();
}

std::vector<std::string> splitCsv(const std::string& line) {
    std::vector<std::string> fields;
    std::stringstream stream(line);
    std::string field;
    while (std::getline(stream, field, ',')) fields.push_back(field);
    return fields;
}

TEST(MagneticReference, SpinOtherOrbitAndCorrelatedSpinOrbitEqualPublishedMkPkBlocks) {
    ORVANE_REQUIRE_REFERENCE(reference);
    const auto& shells = publishedShells(reference);
    const auto magnetic = magneticOperatorsOfAll(test::allConfigurationTables());
    for (int n = 2; n <= 12; ++n) {
        const auto& shell = shells[static_cast<std::size_t>(n)];
        ASSERT_TRUE(shell.tables.hasMagnetic) << "f" << n;
        const auto terms = spinOrbitOf(test::allConfigurationTables()[static_cast<std::size_t>(n)].terms);
        for (std::size_t c = 0; c < 6; ++c) {
            const Eigen::MatrixXd expected =
                inOurBasis(fullFromRows(shell.tables.magnetic[c], terms), shell.transformation);
            const Eigen::MatrixXd& actual = magnetic[static_cast<std::size_t>(n)].spinOtherOrbit[c];
            // published to 6 decimals (the M columns of f2 carry up to 1.5e-5 of rounding)
            const Eigen::MatrixXd difference = (actual - expected).cwiseAbs();
            const double tolerance = 3e-5 + 2e-6 * expected.cwiseAbs().maxCoeff();
            EXPECT_LT(difference.maxCoeff(), tolerance) << "f" << n << " MK,PK column " << c + 1;
        }
    }
}

TEST(MagneticReference, SpinSpinEqualsPublishedReducedElements) {
    ORVANE_REQUIRE_REFERENCE(reference);
    const auto& shells = publishedShells(reference);
    const auto magnetic = magneticOperatorsOfAll(test::allConfigurationTables());
    std::ifstream file(reference / "spin-spin" / "spin-spin-reduced.csv");
    ASSERT_TRUE(file.good());
    std::map<int, std::array<Eigen::MatrixXd, 3>> published;
    std::string line;
    std::getline(file, line);  // header: n, bra, ket, M0, M2, M4
    int rows = 0;
    while (std::getline(file, line)) {
        const auto f = splitCsv(line);
        if (f.size() < 6) continue;
        const int n = std::stoi(f[0]);
        if (n < 2) continue;
        const auto& t = test::allConfigurationTables()[static_cast<std::size_t>(n)];
        auto& m = published[n];
        if (m[0].size() == 0)
            for (auto& x : m) x = Eigen::MatrixXd::Zero(static_cast<int>(t.terms.size()), static_cast<int>(t.terms.size()));
        const int a = termIndex(t, f[1]), b = termIndex(t, f[2]);
        ASSERT_TRUE(a >= 0 && b >= 0) << line;
        for (std::size_t c = 0; c < 3; ++c) m[c](a, b) = std::stod(f[3 + c]);
        ++rows;
    }
    EXPECT_GT(rows, 1000);
    for (int n = 2; n <= 7; ++n) {
        ASSERT_TRUE(published.count(n)) << "f" << n;
        for (std::size_t c = 0; c < 3; ++c) {
            const Eigen::MatrixXd expected = inOurBasis(published[n][c], shells[static_cast<std::size_t>(n)].transformation);
            const Eigen::MatrixXd& actual = magnetic[static_cast<std::size_t>(n)].spinSpin[c];
            const double tolerance = 1e-5 + 1e-6 * expected.cwiseAbs().maxCoeff();
            EXPECT_LT((actual - expected).cwiseAbs().maxCoeff(), tolerance) << "spin-spin f" << n << " M" << 2 * c;
        }
    }
}

TEST(ThreeBodyReference, EqualsHansenJuddCrosswhiteTables) {
    ORVANE_REQUIRE_REFERENCE(reference);
    const auto& shells = publishedShells(reference);
    const auto threeBody = threeBodyOperatorsOfAll(test::allConfigurationTables());
    std::ifstream file(reference / "three-body" / "hansen1996-ti.csv");
    ASSERT_TRUE(file.good());
    std::map<int, std::array<Eigen::MatrixXd, 6>> published;
    std::string line;
    std::getline(file, line);  // header
    while (std::getline(file, line)) {
        const auto f = splitCsv(line);
        if (f.size() < 11) continue;
        const int n = std::stoi(f[0]);
        const int a = std::stoi(f[3]) - 1, b = std::stoi(f[4]) - 1;
        const int T = static_cast<int>(test::allConfigurationTables()[static_cast<std::size_t>(n)].terms.size());
        auto& m = published[n];
        if (m[0].size() == 0)
            for (auto& x : m) x = Eigen::MatrixXd::Zero(T, T);
        for (std::size_t c = 0; c < 6; ++c) m[c](a, b) = m[c](b, a) = std::stod(f[5 + c]);
    }
    for (int n = 3; n <= 7; ++n) {
        // Compared in the published basis: X^T G X. The escalation through the published
        // CFPs gives Hansen's signs also for the f6 term 1S3 (no sign change needed here).
        const Eigen::MatrixXd& x = shells[static_cast<std::size_t>(n)].transformation;
        for (std::size_t c = 0; c < 6; ++c) {
            const Eigen::MatrixXd ours = x.transpose() * threeBody[static_cast<std::size_t>(n)][c] * x;
            EXPECT_LT((ours - published[n][c]).cwiseAbs().maxCoeff(), 1e-6)
                << threeBodyOperatorName(static_cast<int>(c)) << " f" << n;
        }
    }
}

}  // namespace
}  // namespace orvane
