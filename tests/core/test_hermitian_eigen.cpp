// HermitianEigen: agreement with a direct LAPACK zheevr/dsyevr solution, the
// invariants of an eigen-decomposition, the packing and its conjugation, the
// modes, the print file, the disk mode and its scratch file, the messages.
#include <algorithm>
#include <complex>
#include <fstream>
#include <numeric>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/random_matrices.hpp"

#include "core/eigen_solver.hpp"
#include "core/hermitian_eigen.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

using Complex = std::complex<double>;

Eigen::MatrixXcd randomHermitian(int n, unsigned seed) {
    return test::randomHermitian(n, seed, 10.0);
}

HermitianEigenResult solve(const Eigen::MatrixXcd& h, int mode,
                           const HermitianEigenOptions& options = {},
                           std::string_view printFile = "nul:") {
    MemoryLogBook log;
    ScriptedAsker asker;
    return HermitianEigen(packHermitian(h), mode, printFile, log, asker, options);
}

// Largest deviation of V^H V from the unit matrix.
double orthonormalityError(const Eigen::MatrixXcd& v) {
    const Eigen::Index n = v.cols();
    return (v.adjoint() * v - Eigen::MatrixXcd::Identity(n, n)).cwiseAbs().maxCoeff();
}

// Largest deviation of V diag(E) V^H from H.
double reconstructionError(const Eigen::MatrixXcd& h, const HermitianEigenResult& r) {
    const Eigen::MatrixXcd rebuilt =
        r.eigenvectors * r.eigenvalues.cast<Complex>().asDiagonal() * r.eigenvectors.adjoint();
    return (rebuilt - h).cwiseAbs().maxCoeff();
}

// |<a_j|b_j>| for every column: 1 when the columns are the same vector up to a
// phase (the eigenvalues of the random matrices below are non-degenerate).
double worstOverlapDefect(const Eigen::MatrixXcd& a, const Eigen::MatrixXcd& b) {
    double worst = 0.0;
    for (Eigen::Index j = 0; j < a.cols(); ++j)
        worst = std::max(worst, std::abs(1.0 - std::abs(a.col(j).dot(b.col(j)))));
    return worst;
}

// ---------------------------------------------------------------------------
// Agreement with LAPACK zheevr (all pairs) and the invariants, many orders.

class HermitianEigenOrders : public ::testing::TestWithParam<int> {};

TEST_P(HermitianEigenOrders, AgreesWithZheevrAndDecomposesTheMatrix) {
    const int n = GetParam();
    const Eigen::MatrixXcd h = randomHermitian(n, 1000u + static_cast<unsigned>(n));
    const HermitianEigenResult r = solve(h, kEigenVectors);
    ASSERT_EQ(r.status, HermitianEigenStatus::Ok);
    ASSERT_EQ(r.statesFound, n);
    EXPECT_FALSE(r.usedScratchFile);

    const HermitianEigenpairsResult direct = hermitianEigenpairs(h);  // zheevr, RANGE = 'A'
    ASSERT_EQ(direct.status, EigenStatus::Ok);
    const double scale = 10.0 + n;
    for (int j = 0; j < n; ++j)
        EXPECT_NEAR(r.eigenvalues(j), direct.values(j), 1e-12 * scale) << "eigenvalue " << j;
    for (int j = 1; j < n; ++j) EXPECT_LE(r.eigenvalues(j - 1), r.eigenvalues(j)) << "ascending";

    EXPECT_LT(orthonormalityError(r.eigenvectors), 1e-12 * n);
    EXPECT_LT(reconstructionError(h, r), 1e-12 * scale);
    EXPECT_LT(worstOverlapDefect(r.eigenvectors, direct.vectors), 1e-8);
}

INSTANTIATE_TEST_SUITE_P(ManyOrders, HermitianEigenOrders,
                         ::testing::Values(1, 2, 3, 4, 10, 33, 57, 200));

// ---------------------------------------------------------------------------
// Packing and conjugation.

TEST(HermitianEigenPacking, LowerTriangleHoldsRealPartsUpperTriangleImaginaryParts) {
    // H(1, 0) = 2 + 3i (below the diagonal) -> A(1, 0) = 2, A(0, 1) = 3.
    Eigen::MatrixXcd h(2, 2);
    h << Complex(5, 0), Complex(2, -3), Complex(2, 3), Complex(-1, 0);
    const Eigen::MatrixXd packed = packHermitian(h);
    EXPECT_EQ(packed(0, 0), 5.0);
    EXPECT_EQ(packed(1, 1), -1.0);
    EXPECT_EQ(packed(1, 0), 2.0);
    EXPECT_EQ(packed(0, 1), 3.0);
    EXPECT_EQ(unpackHermitian(packed), h);
}

// Pauli sigma_y = [[0, -i], [i, 0]] packed as A(1,0) = 0, A(0,1) = +1 (H(1,0) = i).
// Its eigenvalue +1 belongs to (1, i)/sqrt 2 and -1 to (1, -i)/sqrt 2; the
// conjugate matrix has the same eigenvalues with the vectors swapped, so only
// the vectors reveal a lost conjugation (in memory and through the scratch file).
TEST(HermitianEigenPacking, SigmaYEigenvectorsFixTheConjugation) {
    Eigen::MatrixXd packed(2, 2);
    packed << 0.0, 1.0, 0.0, 0.0;
    for (int threshold : {kHermitianEigenDiskThreshold, 1}) {
        MemoryLogBook log;
        ScriptedAsker asker;
        HermitianEigenOptions options;
        options.diskThreshold = threshold;
        options.scratchDirectory = test::scratchDirectory("heigen_sigma_y");
        const HermitianEigenResult r = HermitianEigen(packed, kEigenVectors, "", log, asker, options);
        ASSERT_EQ(r.status, HermitianEigenStatus::Ok);
        EXPECT_EQ(r.usedScratchFile, threshold == 1);
        EXPECT_NEAR(r.eigenvalues(0), -1.0, 1e-15);
        EXPECT_NEAR(r.eigenvalues(1), 1.0, 1e-15);
        // second component / first component: -i for eigenvalue -1, +i for +1
        const Complex ratioLow = r.eigenvectors(1, 0) / r.eigenvectors(0, 0);
        const Complex ratioHigh = r.eigenvectors(1, 1) / r.eigenvectors(0, 1);
        EXPECT_NEAR(std::abs(ratioLow - Complex(0, -1)), 0.0, 1e-14) << "threshold " << threshold;
        EXPECT_NEAR(std::abs(ratioHigh - Complex(0, 1)), 0.0, 1e-14) << "threshold " << threshold;
    }
}

TEST(HermitianEigenPacking, RealSymmetricInputGivesRealVectorsAndDsyevrValues) {
    for (int n : {2, 5, 31, 120}) {
        Eigen::MatrixXd s = randomHermitian(n, 77u + static_cast<unsigned>(n)).real();
        s = (s + s.transpose()).eval() / 2.0;
        const HermitianEigenResult r = solve(s.cast<Complex>(), kEigenVectors);
        ASSERT_EQ(r.status, HermitianEigenStatus::Ok);
        const SymmetricEigenpairsResult direct = symmetricEigenvalues(s);  // dsyevr, JOBZ = 'N'
        ASSERT_EQ(direct.values.size(), n);
        EXPECT_LT((r.eigenvalues - direct.values).cwiseAbs().maxCoeff(), 1e-12 * (10.0 + n))
            << "order " << n;
        EXPECT_LT(r.eigenvectors.imag().cwiseAbs().maxCoeff(), 1e-13) << "order " << n;
    }
}

TEST(HermitianEigenPacking, OrderOneGivesTheDiagonalAndTheUnitVector) {
    Eigen::MatrixXd packed(1, 1);
    packed << -4.25;
    for (int mode : {0, 1, 2, 3}) {
        MemoryLogBook log;
        ScriptedAsker asker;
        const HermitianEigenResult r = HermitianEigen(packed, mode, "nul:", log, asker);
        ASSERT_EQ(r.status, HermitianEigenStatus::Ok);
        ASSERT_EQ(r.eigenvalues.size(), 1);
        EXPECT_EQ(r.eigenvalues(0), -4.25);
        if (mode < kEigenValuesOnly) {
            ASSERT_EQ(r.eigenvectors.rows(), 1);
            EXPECT_EQ(r.eigenvectors(0, 0), Complex(1.0, 0.0)) << "mode " << mode;
        } else {
            EXPECT_EQ(r.eigenvectors.size(), 0) << "mode " << mode;
        }
    }
}

// ---------------------------------------------------------------------------
// Modes.

TEST(HermitianEigenModes, ValuesOnlyModesGiveTheSameValuesAndNoVectors) {
    const Eigen::MatrixXcd h = randomHermitian(40, 5u);
    const HermitianEigenResult withVectors = solve(h, kEigenVectors);
    for (int mode : {kEigenValuesOnly, kEigenValuesSilent, 7}) {
        const HermitianEigenResult r = solve(h, mode);
        ASSERT_EQ(r.status, HermitianEigenStatus::Ok);
        EXPECT_EQ(r.eigenvectors.size(), 0) << "mode " << mode;
        EXPECT_LT((r.eigenvalues - withVectors.eigenvalues).cwiseAbs().maxCoeff(), 1e-11)
            << "mode " << mode;
        EXPECT_EQ(r.statesFound, 40);
    }
}

TEST(HermitianEigenModes, InvalidInputIsReportedNotSolved) {
    MemoryLogBook log;
    ScriptedAsker asker;
    Eigen::MatrixXd withNaN = Eigen::MatrixXd::Identity(3, 3);
    withNaN(2, 0) = std::numeric_limits<double>::quiet_NaN();
    Eigen::MatrixXd withInfinity = Eigen::MatrixXd::Identity(3, 3);
    withInfinity(0, 2) = std::numeric_limits<double>::infinity();
    EXPECT_EQ(HermitianEigen(withNaN, 1, "", log, asker).status, HermitianEigenStatus::InvalidInput);
    EXPECT_EQ(HermitianEigen(withInfinity, 1, "", log, asker).status,
              HermitianEigenStatus::InvalidInput);
    EXPECT_EQ(HermitianEigen(Eigen::MatrixXd::Zero(2, 3), 1, "", log, asker).status,
              HermitianEigenStatus::InvalidInput);
    EXPECT_EQ(HermitianEigen(Eigen::MatrixXd::Identity(2, 2), -1, "", log, asker).status,
              HermitianEigenStatus::InvalidInput);
    EXPECT_TRUE(log.lines().empty());
}

// The no-convergence report: two log lines and a dialog in modes 0-2, silence
// from mode 3 on. (LAPACK's solvers do not fail on any matrix we can build, so
// the report is exercised directly.)
TEST(HermitianEigenModes, NoConvergenceReportByMode) {
    for (int mode : {0, 1, 2, 3, 4}) {
        MemoryLogBook log;
        ScriptedAsker asker;
        reportNoConvergence(17, mode, log, asker);
        if (mode >= kEigenValuesSilent) {
            EXPECT_TRUE(log.lines().empty()) << "mode " << mode;
            EXPECT_TRUE(asker.messages().empty()) << "mode " << mode;
            continue;
        }
        ASSERT_EQ(log.lines().size(), 2u) << "mode " << mode;
        EXPECT_EQ(log.lines()[0], "error - no convergence after 30");
        EXPECT_EQ(log.lines()[1], "iterations for eigenvalue # 17");
        ASSERT_EQ(asker.messages().size(), 1u);
        EXPECT_NE(asker.messages()[0].find(
                      "Eigenvalue error - no convergence after 30 iterations for eigenvalue # 17"),
                  std::string::npos);
    }
}

// ---------------------------------------------------------------------------
// Print file.

std::string readAll(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

TEST(HermitianEigenPrintFile, DiagonalMatrixPrintsItsSortedStatesExactly) {
    // diag(3, 1, 2): eigenvalues 1, 2, 3 with the unit vectors e2, e3, e1
    // (a diagonal matrix needs no reflection, so the vectors come out exact).
    const auto folder = test::scratchDirectory("heigen_print");
    const auto file = folder / "states.txt";
    Eigen::MatrixXd packed = Eigen::Vector3d(3.0, 1.0, 2.0).asDiagonal();
    MemoryLogBook log;
    ScriptedAsker asker;
    const HermitianEigenResult r =
        HermitianEigen(packed, kEigenVectorsAndPrintFile, file.string(), log, asker);
    ASSERT_EQ(r.status, HermitianEigenStatus::Ok);
    EXPECT_EQ(log.lines(), std::vector<std::string>{"Eigenvalues and eigenvectors  print out ##"});
    const std::string expected =
        "\n"
        "eigenvalue   eigenvector\n"
        "Statevector: 1  1.0000000\n"
        " 0.0000000  0.0000000  1.0000000  0.0000000  0.0000000  0.0000000 \n"
        "Statevector: 2  2.0000000\n"
        " 0.0000000  0.0000000  0.0000000  0.0000000  1.0000000  0.0000000 \n"
        "Statevector: 3  3.0000000\n"
        " 1.0000000  0.0000000  0.0000000  0.0000000  0.0000000  0.0000000 \n";
    EXPECT_EQ(readAll(file), expected);
}

TEST(HermitianEigenPrintFile, FiveComponentsToALine) {
    const std::string text = printFileText(Eigen::VectorXd::LinSpaced(7, -3.0, 3.0),
                                           Eigen::MatrixXcd::Identity(7, 7) * Complex(-0.5, 0.25));
    std::istringstream lines(text);
    std::string line;
    std::vector<std::string> all;
    while (std::getline(lines, line)) all.push_back(line);
    // empty line + headings + 7 states x (1 + 2 lines: 5 and 2 components)
    ASSERT_EQ(all.size(), 2u + 7u * 3u);
    EXPECT_EQ(all[2], "Statevector: 1 -3.0000000");
    EXPECT_EQ(splitFields(all[3]).size(), 10u);
    EXPECT_EQ(splitFields(all[4]).size(), 4u);
    const auto first = splitFields(all[3]);
    EXPECT_EQ(*parseNumber(first[0]), -0.5) << "real part first";
    EXPECT_EQ(*parseNumber(first[1]), 0.25) << "imaginary part second";
    EXPECT_EQ(all[3].back(), ' ') << "each number followed by a blank";
}

TEST(HermitianEigenPrintFile, NullNamesAndModeOneWriteNothing) {
    const auto folder = test::scratchDirectory("heigen_null_print");
    const auto previous = std::filesystem::current_path();
    std::filesystem::current_path(folder);
    const Eigen::MatrixXcd h = randomHermitian(4, 9u);
    for (const char* name : {"NUL:", "nul:", "Nul:", ""}) {
        MemoryLogBook log;
        ScriptedAsker asker;
        const auto r = HermitianEigen(packHermitian(h), kEigenVectorsAndPrintFile, name, log, asker);
        EXPECT_EQ(r.status, HermitianEigenStatus::Ok);
        EXPECT_TRUE(log.lines().empty()) << name;
    }
    MemoryLogBook log;
    ScriptedAsker asker;
    HermitianEigen(packHermitian(h), kEigenVectors, "mode1.txt", log, asker);
    HermitianEigen(packHermitian(h), kEigenValuesOnly, "mode2.txt", log, asker);
    EXPECT_TRUE(log.lines().empty());
    const bool empty = std::filesystem::is_empty(folder);
    std::filesystem::current_path(previous);
    EXPECT_TRUE(empty) << "a file was written for a null name or a mode without print file";
}

// ---------------------------------------------------------------------------
// Disk mode, exercised at small orders by lowering the threshold.

struct ScratchObservation {
    bool existed = false;
    std::vector<std::string> lines;
};

HermitianEigenOptions observingOptions(const std::filesystem::path& folder, int threshold,
                                       ScratchObservation& seen) {
    HermitianEigenOptions options;
    options.diskThreshold = threshold;
    options.scratchDirectory = folder;
    options.afterScratchWritten = [&seen](const std::filesystem::path& path) {
        seen.existed = std::filesystem::exists(path);
        EXPECT_EQ(path.filename().string(), "~HEIGEN.TMP");
        std::ifstream in(path);
        std::string line;
        while (std::getline(in, line)) seen.lines.push_back(line);
    };
    return options;
}

class HermitianEigenDiskOrders : public ::testing::TestWithParam<int> {};

TEST_P(HermitianEigenDiskOrders, ScratchFilePathEqualsInMemoryPath) {
    const int n = GetParam();
    const Eigen::MatrixXcd h = randomHermitian(n, 300u + static_cast<unsigned>(n));
    const auto folder = test::scratchDirectory("heigen_disk_" + std::to_string(n));
    ScratchObservation seen;
    const HermitianEigenOptions options = observingOptions(folder, n - 1, seen);

    for (int mode : {kEigenVectorsAndPrintFile, kEigenVectors}) {
        seen = ScratchObservation{};
        const HermitianEigenResult disk = solve(h, mode, options);
        ASSERT_EQ(disk.status, HermitianEigenStatus::Ok);
        EXPECT_TRUE(disk.usedScratchFile);
        EXPECT_TRUE(seen.existed);
        EXPECT_FALSE(std::filesystem::exists(folder / "~HEIGEN.TMP")) << "not removed";

        // Layout: rows i = 2..n, each with i-1 pairs of numbers.
        ASSERT_EQ(seen.lines.size(), static_cast<std::size_t>(n - 1));
        for (int i = 2; i <= n; ++i)
            EXPECT_EQ(splitFields(seen.lines[i - 2]).size(), static_cast<std::size_t>(2 * (i - 1)))
                << "row " << i;
        // The first reflection clears column n above the super-diagonal, leaving
        // there a real element of modulus |H(n, 1..n-1)|: the last pair of the
        // last row.
        const auto lastRow = splitFields(seen.lines.back());
        const double beta = *parseNumber(lastRow[lastRow.size() - 2]);
        EXPECT_NEAR(std::abs(beta), h.row(n - 1).head(n - 1).norm(), 1e-12 * n);
        EXPECT_EQ(*parseNumber(lastRow.back()), 0.0);

        const HermitianEigenResult memory = solve(h, mode);
        EXPECT_FALSE(memory.usedScratchFile);
        EXPECT_LT((disk.eigenvalues - memory.eigenvalues).cwiseAbs().maxCoeff(), 1e-13 * n);
        EXPECT_LT((disk.eigenvectors - memory.eigenvectors).cwiseAbs().maxCoeff(), 1e-11)
            << "mode " << mode;
        EXPECT_LT(reconstructionError(h, disk), 1e-12 * (10.0 + n));
    }
}

// 2 and 3: trivial reflections; 33, 65, 100: reflectors span several blocks of 32.
INSTANTIATE_TEST_SUITE_P(SmallOrders, HermitianEigenDiskOrders,
                         ::testing::Values(2, 3, 33, 65, 100));

TEST(HermitianEigenDisk, ThresholdIsExclusiveAndValuesOnlyModesNeverUseDisk) {
    EXPECT_EQ(kHermitianEigenDiskThreshold, 3500);
    const Eigen::MatrixXcd h = randomHermitian(20, 11u);
    const auto folder = test::scratchDirectory("heigen_threshold");
    ScratchObservation seen;
    EXPECT_FALSE(solve(h, kEigenVectors, observingOptions(folder, 20, seen)).usedScratchFile);
    EXPECT_TRUE(solve(h, kEigenVectors, observingOptions(folder, 19, seen)).usedScratchFile);
    seen = ScratchObservation{};
    EXPECT_FALSE(solve(h, kEigenValuesOnly, observingOptions(folder, 1, seen)).usedScratchFile);
    EXPECT_FALSE(seen.existed);
}

TEST(HermitianEigenDisk, UnwritableScratchFolderIsAFileErrorNamingTheFile) {
    const Eigen::MatrixXcd h = randomHermitian(6, 12u);
    HermitianEigenOptions options;
    options.diskThreshold = 2;
    options.scratchDirectory = "/nonexistent-orvane-folder";
    try {
        solve(h, kEigenVectors, options);
        FAIL() << "expected a file error";
    } catch (const UserError& error) {
        EXPECT_NE(std::string(error.what()).find("~HEIGEN.TMP"), std::string::npos);
    }
}

TEST(HermitianEigenDisk, FailingObserverStillRemovesTheScratchFile) {
    const auto folder = test::scratchDirectory("heigen_throwing_observer");
    HermitianEigenOptions options;
    options.diskThreshold = 2;
    options.scratchDirectory = folder;
    options.afterScratchWritten = [](const std::filesystem::path&) {
        throw std::runtime_error("interrupted");
    };
    EXPECT_THROW(solve(randomHermitian(8, 13u), kEigenVectors, options), std::runtime_error);
    EXPECT_FALSE(std::filesystem::exists(folder / "~HEIGEN.TMP"));
}

// ---------------------------------------------------------------------------
// Order 3501, the default threshold crossed, once per eigenvector mode. The
// matrix is a scattered direct sum of small Hermitian blocks with chosen,
// well separated eigenvalues, so every eigenpair is known exactly: the
// eigenvalues are the integers 1..3501 and each eigenvector is a unit vector of
// a block's known eigenbasis, placed on the block's scattered indices.

struct KnownSpectrum {
    Eigen::MatrixXcd h;
    std::vector<std::vector<int>> blockIndices;           // scattered indices of each block
    std::vector<Eigen::MatrixXcd> blockVectors;           // eigenbasis of each block
    std::vector<std::pair<int, int>> ownerOfEigenvalue;   // (block, column) of eigenvalue k+1
};

KnownSpectrum scatteredBlockMatrix(int n, unsigned seed) {
    std::mt19937 generator(seed);
    std::vector<int> order(static_cast<std::size_t>(n));
    std::iota(order.begin(), order.end(), 0);
    std::shuffle(order.begin(), order.end(), generator);  // scattering of the indices
    std::vector<int> values(static_cast<std::size_t>(n));
    std::iota(values.begin(), values.end(), 1);
    std::shuffle(values.begin(), values.end(), generator);  // eigenvalues 1..n, in random blocks

    KnownSpectrum known;
    known.h = Eigen::MatrixXcd::Zero(n, n);
    known.ownerOfEigenvalue.resize(static_cast<std::size_t>(n));
    int start = 0;
    while (start < n) {
        const int size = std::min(n - start, 2 + start % 2);  // blocks of 2 and 3
        // A random unitary from the QR decomposition of a random complex matrix.
        const Eigen::MatrixXcd q = Eigen::HouseholderQR<Eigen::MatrixXcd>(
                                       randomHermitian(size, generator()) +
                                       Complex(0, 1) * randomHermitian(size, generator()))
                                       .householderQ();
        Eigen::VectorXd lambda(size);
        std::vector<int> indices;
        for (int c = 0; c < size; ++c) {
            lambda(c) = values[static_cast<std::size_t>(start + c)];
            indices.push_back(order[static_cast<std::size_t>(start + c)]);
            known.ownerOfEigenvalue[static_cast<std::size_t>(lambda(c) - 1)] = {
                static_cast<int>(known.blockIndices.size()), c};
        }
        const Eigen::MatrixXcd block = q * lambda.cast<Complex>().asDiagonal() * q.adjoint();
        for (int r = 0; r < size; ++r)
            for (int c = 0; c < size; ++c) known.h(indices[r], indices[c]) = block(r, c);
        known.blockIndices.push_back(indices);
        known.blockVectors.push_back(q);
        start += size;
    }
    return known;
}

class HermitianEigenOrder3501 : public ::testing::TestWithParam<int> {};

TEST_P(HermitianEigenOrder3501, UsesTheScratchFileAndFindsTheKnownEigenpairs) {
    const int mode = GetParam();
    const int n = kHermitianEigenDiskThreshold + 1;
    const KnownSpectrum known = scatteredBlockMatrix(n, 2024u);
    const auto folder = test::scratchDirectory("heigen_3501_mode" + std::to_string(mode));
    const auto previous = std::filesystem::current_path();
    std::filesystem::current_path(folder);  // the scratch file goes to the current directory

    bool existed = false;
    std::uintmax_t bytes = 0;
    HermitianEigenOptions options;  // default threshold and folder
    options.afterScratchWritten = [&](const std::filesystem::path& path) {
        existed = std::filesystem::exists(path) && path == "~HEIGEN.TMP";
        bytes = std::filesystem::file_size(path);
    };
    MemoryLogBook log;
    ScriptedAsker asker;
    Eigen::MatrixXd packed = packHermitian(known.h);
    const HermitianEigenResult r = HermitianEigen(std::move(packed), mode, "nul:", log, asker, options);
    const bool removed = !std::filesystem::exists("~HEIGEN.TMP");
    std::filesystem::current_path(previous);

    ASSERT_EQ(r.status, HermitianEigenStatus::Ok);
    EXPECT_TRUE(r.usedScratchFile);
    EXPECT_TRUE(existed);
    EXPECT_GT(bytes, 1000000u);
    EXPECT_TRUE(removed);
    ASSERT_EQ(r.eigenvalues.size(), n);
    ASSERT_EQ(r.eigenvectors.cols(), n);

    double worstValue = 0.0;
    double worstVector = 0.0;
    for (int k = 0; k < n; ++k) {
        worstValue = std::max(worstValue, std::abs(r.eigenvalues(k) - (k + 1)));
        const auto [block, column] = known.ownerOfEigenvalue[static_cast<std::size_t>(k)];
        Complex overlap(0.0, 0.0);
        const auto& indices = known.blockIndices[static_cast<std::size_t>(block)];
        for (std::size_t c = 0; c < indices.size(); ++c)
            overlap += std::conj(known.blockVectors[static_cast<std::size_t>(block)](
                           static_cast<Eigen::Index>(c), column)) *
                       r.eigenvectors(indices[c], k);
        worstVector = std::max(worstVector, std::abs(1.0 - std::abs(overlap)));
    }
    EXPECT_LT(worstValue, 1e-9) << "eigenvalues are the integers 1..3501 by construction";
    EXPECT_LT(worstVector, 1e-9) << "eigenvectors are the blocks' eigenvectors up to a phase";
}

INSTANTIATE_TEST_SUITE_P(EigenvectorModes, HermitianEigenOrder3501,
                         ::testing::Values(kEigenVectorsAndPrintFile, kEigenVectors));

}  // namespace
}  // namespace orvane
