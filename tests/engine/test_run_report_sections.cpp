// Two sections of the run report: the complex engine's "/printhm" listing of
// the Hermitian crystal-field blocks (real parts on and above the diagonal,
// imaginary parts below) and the correlation columns of the J-multiplet
// section (<||VS(k)||>, <||VL(k)||>).
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <sstream>
#include <string>
#include <vector>

#include "core/angular.hpp"
#include "core/atomic_file.hpp"
#include "core/log_book.hpp"
#include "engine/energy_levels.hpp"
#include "engine/general_output.hpp"
#include "engine/hamiltonian_printout.hpp"
#include "engine/j_multiplet_elements.hpp"
#include "engine/run_driver.hpp"
#include "tests/engine/engine_test_support.hpp"
#include "tests/engine/run_driver_test_support.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

using test::bkq;
using test::row;

constexpr const char* kComplexHeading =
    "### Complex Hamiltonian matrix elements (real/imaginary ones at upper/lower diagonal) of dim = ";

double signOfInteger(double exponent) { return std::lround(exponent) % 2 == 0 ? 1.0 : -1.0; }

// Ce3+ (f1), zeta = 625 cm^-1: 2F5/2 at -1250, 2F7/2 at +937.5.
ParameterSet ceriumSet(std::vector<CrystalFieldRow> crystalField, int fold) {
    ParameterSet set;
    set.title = "Ce3+ report sections";
    set.electronCount = 1;
    set.mainFreeIon = {row("EAVG", 0), row("F2", 0), row("F4", 0), row("F6", 0), row("ZETA", 625)};
    set.crystalField = std::move(crystalField);
    set.fold = fold;
    return set;
}

// <2F J||C(k)||2F J'> of f1 (physics notes 4.1, spin-first coupling):
// (-1)^(S+L+J+k) sqrt([J][J']) {L J S; J' L k} <f||C(k)||f>.
double fOneReducedCk(double J, int k, double Jp) {
    return signOfInteger(0.5 + 3 + J + k) * std::sqrt((2 * J + 1) * (2 * Jp + 1)) * SixJ(3, J, 0.5, Jp, 3, k) *
           ReducedCk(3, k, 3);
}

// The block built here from its states alone: free-ion energies on the diagonal and
// B C(2)_2 + B* C(2)_-2 (Wybourne; B(2,-2) = B(2,2)*) by Wigner-Eckart (Edmonds (5.4.1)),
// with the sign of each free-ion eigenvector (one |2F J> each) carried along.
Eigen::MatrixXcd independentBlock(const EnergyLevelResult& result, const ResidueBlock& block,
                                  std::complex<double> b22) {
    const auto size = static_cast<Eigen::Index>(block.states.size());
    Eigen::MatrixXcd matrix = Eigen::MatrixXcd::Zero(size, size);
    for (Eigen::Index i = 0; i < size; ++i) {
        const auto& a = block.states[i];
        matrix(i, i) = result.freeIon.levels[a.level].energy;
        for (Eigen::Index j = 0; j < size; ++j) {
            const auto& b = block.states[j];
            const double J = a.twiceJ / 2.0, M = a.twiceM / 2.0, Jp = b.twiceJ / 2.0, Mp = b.twiceM / 2.0;
            const double reduced = result.freeIon.levels[a.level].vector(0) *
                                   result.freeIon.levels[b.level].vector(0) * fOneReducedCk(J, 2, Jp);
            const double wignerEckart = signOfInteger(J - M) * reduced;
            if (a.twiceM - b.twiceM == 4) matrix(i, j) += b22 * wignerEckart * ThreeJ(J, 2, Jp, -M, 2, Mp);
            if (a.twiceM - b.twiceM == -4)
                matrix(i, j) += std::conj(b22) * wignerEckart * ThreeJ(J, 2, Jp, -M, -2, Mp);
        }
    }
    return matrix;
}

// The listed arrays: one square matrix per complex heading, read back from the lines.
std::vector<Eigen::MatrixXd> listedArrays(const std::vector<std::string>& lines) {
    std::vector<Eigen::MatrixXd> arrays;
    const std::string heading = kComplexHeading;
    for (std::size_t n = 0; n < lines.size(); ++n) {
        if (lines[n].rfind(heading, 0) != 0) continue;
        const int dim = std::stoi(lines[n].substr(heading.size()));
        Eigen::MatrixXd array = Eigen::MatrixXd::Constant(dim, dim, std::nan(""));
        int row = -1, column = 0;
        for (++n; n < lines.size() && lines[n] != "### End of Hamiltonian matrix elements ###"; ++n) {
            if (lines[n].rfind("Hamiltonian matrix row = ", 0) == 0) {
                EXPECT_EQ(lines[n], "Hamiltonian matrix row = " + std::to_string(row + 2) +
                                        " (first element for column=1)");
                ++row;
                column = 0;
                continue;
            }
            std::istringstream values(lines[n]);
            for (double value; values >> value; ++column) {
                EXPECT_LT(column, dim) << lines[n];
                if (row >= 0 && column < dim) array(row, column) = value;
            }
        }
        EXPECT_EQ(row + 1, dim);
        arrays.push_back(array);
    }
    return arrays;
}

TEST(ComplexHamiltonianListing, CeriumWithComplexB22PlacesRealAboveImaginaryBelow) {
    const std::complex<double> b22(300.0, 200.0);
    auto set = ceriumSet({bkq(2, 2, b22.real(), b22.imag())}, 2);
    set.switches.printHamiltonian = true;
    MemoryLogBook log;
    const auto result = computeEnergyLevels(set, test::engineTableDirectory(), log, {true, false, true});
    const auto arrays = listedArrays(log.lines());
    const auto& blocks = result.crystalFieldOperators.blocks;
    ASSERT_EQ(blocks.size(), 2u);  // 2MJ = 1 and 3 (mod 4)
    ASSERT_EQ(arrays.size(), blocks.size());
    bool sawImaginary = false;
    for (std::size_t b = 0; b < blocks.size(); ++b) {
        SCOPED_TRACE(b);
        const auto expected = independentBlock(result, blocks[b], b22);
        ASSERT_EQ(arrays[b].rows(), expected.rows());
        ASSERT_EQ(arrays[b].rows(), 7);
        for (Eigen::Index i = 0; i < expected.rows(); ++i)
            for (Eigen::Index j = 0; j < expected.cols(); ++j) {
                const double want = j >= i ? expected(i, j).real() : expected(i, j).imag();
                EXPECT_NEAR(arrays[b](i, j), want, 6e-5) << "row " << i + 1 << " column " << j + 1;
                if (j < i && std::abs(want) > 1.0) sawImaginary = true;
            }
    }
    EXPECT_TRUE(sawImaginary);  // Im B(2,2) reaches the lower triangle
}

TEST(ComplexHamiltonianListing, OnlyTheComplexEngineListsCrystalFieldBlocks) {
    auto set = ceriumSet({bkq(2, 2, 300.0)}, 2);  // the real engine refuses Im B(k,q)
    set.switches.printHamiltonian = true;
    MemoryLogBook realLog;
    computeEnergyLevels(set, test::engineTableDirectory(), realLog, {true, false, false});
    EXPECT_TRUE(listedArrays(realLog.lines()).empty());
    set.switches.printHamiltonian = false;
    MemoryLogBook quietLog;
    computeEnergyLevels(set, test::engineTableDirectory(), quietLog, {true, false, true});
    EXPECT_TRUE(listedArrays(quietLog.lines()).empty());
}

TEST(ComplexHamiltonianListing, PackedArrayOfASmallHermitianMatrix) {
    Eigen::MatrixXcd h(2, 2);
    h << std::complex<double>(1, 0), std::complex<double>(2, 3), std::complex<double>(2, -3),
        std::complex<double>(4, 0);
    const auto packed = packedHermitianArray(h);
    EXPECT_DOUBLE_EQ(packed(0, 1), 2.0);   // Re H(1,2)
    EXPECT_DOUBLE_EQ(packed(1, 0), -3.0);  // Im H(2,1)
    EXPECT_DOUBLE_EQ(packed(1, 1), 4.0);
    const auto lines = complexHamiltonianPrintoutLines(h);
    ASSERT_EQ(lines.size(), 6u);
    EXPECT_EQ(lines[0], std::string(kComplexHeading) + "2");
    EXPECT_EQ(lines[2], "       1.0000       2.0000");
    EXPECT_EQ(lines[4], "      -3.0000       4.0000");
}

// f1 closed forms (engine/correlation_crystal_field.hpp): SCCF = 2 s.s u(k) = 3/2 u(k),
// LCCF = l(l+1) u(k) = 12 u(k); <2F J||u(k)||2F J> = (-1)^(S+L+J+k) [J] {L J S; J L k}
// (physics notes 4.1, <f||u(k)||f> = 1).
TEST(MultipletCorrelationElements, CeriumClosedForms) {
    struct Case {
        CorrelationKind kind;
        double factor;
        const char* letter;
    };
    for (const Case& c : {Case{CorrelationKind::Sccf, 1.5, "S"}, Case{CorrelationKind::Lccf, 12.0, "L"}}) {
        SCOPED_TRACE(c.letter);
        auto set = ceriumSet({bkq(2, 0, 200)}, 1);
        set.correlationCF.push_back({c.kind, {bkq(2, 0, 40), bkq(4, 0, -30), bkq(6, 0, 20)}});
        set.switches.correlationSections = true;
        MemoryLogBook log;
        const auto result = computeEnergyLevels(set, test::engineTableDirectory(), log);
        const auto elements = multipletCrystalFieldElements(result.crystalFieldTensors, result.conjugate);
        ASSERT_EQ(elements.size(), 2u);
        for (const auto& entry : elements) {
            ASSERT_EQ(entry.correlation.size(), 3u);
            const double J = entry.twiceJ / 2.0;
            for (int i = 0; i < 3; ++i) {
                const int k = kEvenRanks[i];
                EXPECT_EQ(entry.correlation[i].label, std::string("<||V") + c.letter + "(" + std::to_string(k) + ")||>");
                const double unit = signOfInteger(0.5 + 3 + J + k) * (2 * J + 1) * SixJ(3, J, 0.5, J, 3, k);
                EXPECT_NEAR(entry.correlation[i].value, c.factor * unit, 1e-10) << "2J " << entry.twiceJ << " k " << k;
            }
        }
        // Against the section's own C(2) column: <||C(2)||> / <f||C(2)||f> = u(2).
        for (const auto& entry : elements)
            EXPECT_NEAR(entry.correlation[0].value, c.factor * entry.reducedCk[0] / ReducedCk(3, 2, 3), 1e-10);
    }
}

TEST(MultipletCorrelationElements, SectionColumnsAndSameOnBothRoutesOfYtterbium) {
    auto set = ceriumSet({bkq(2, 0, 200)}, 1);
    set.correlationCF.push_back({CorrelationKind::Sccf, {bkq(2, 0, 40), bkq(4, 0, -30)}});
    set.switches.correlationSections = true;
    MemoryLogBook log;
    const auto ce = computeEnergyLevels(set, test::engineTableDirectory(), log);
    const auto ceElements = multipletCrystalFieldElements(ce.crystalFieldTensors, ce.conjugate);
    MemoryLogBook out;
    std::vector<ResultLevel> levels(2);
    levels[0].label = "2F5/2";
    levels[1].label = "2F7/2";
    writeMultipletElements(out, ceElements, levels);
    ASSERT_EQ(out.lines().size(), 3u);
    EXPECT_EQ(out.lines()[0], "J-multiplet       <||C(2)||>  <||C(4)||>  <||C(6)||> <||VS(2)||> <||VS(4)||>");
    // The printed "###0.00000" values of 2F5/2 are the elements computed above.
    const std::string& first = out.lines()[1];
    std::istringstream fields(first.substr(18));
    std::vector<double> values;
    for (double v; fields >> v;) values.push_back(v);
    ASSERT_EQ(values.size(), 5u) << first;
    EXPECT_NEAR(values[3], ceElements[0].correlation[0].value, 6e-6);
    EXPECT_NEAR(values[4], ceElements[0].correlation[1].value, 6e-6);
    // Without correlation parameters the section keeps its three columns.
    set.correlationCF.clear();
    set.switches.correlationSections = false;
    const auto plain = computeEnergyLevels(set, test::engineTableDirectory(), log);
    for (const auto& entry : multipletCrystalFieldElements(plain.crystalFieldTensors, plain.conjugate))
        EXPECT_TRUE(entry.correlation.empty());
    // Yb3+ (f13): 2 s_i.S u(k) summed over the shell gives the f1 values with the
    // opposite sign of u(k) (u(k) of f13 = -u(k) of f1), the same through f1 and in f13.
    set.correlationCF.push_back({CorrelationKind::Sccf, {bkq(2, 0, 40), bkq(4, 0, -30)}});
    set.switches.correlationSections = true;
    set.electronCount = 13;
    for (bool actual : {false, true}) {
        SCOPED_TRACE(actual);
        set.switches.actualShell = actual;
        const auto yb = computeEnergyLevels(set, test::engineTableDirectory(), log);
        const auto ybElements = multipletCrystalFieldElements(yb.crystalFieldTensors, yb.conjugate);
        ASSERT_EQ(ybElements.size(), 2u);
        for (const auto& entry : ybElements) {
            const auto& partner = entry.twiceJ == ceElements[0].twiceJ ? ceElements[0] : ceElements[1];
            ASSERT_EQ(entry.correlation.size(), 2u);
            for (int i = 0; i < 2; ++i)
                EXPECT_NEAR(entry.correlation[i].value, partner.correlation[i].value, 1e-10) << i;
        }
    }
}

// Mode 1 (complex crystal field) with "/printhm" from the options: the listing and the
// correlation columns land in the general output; the caller's log gets no matrix lines.
TEST(RunReportSections, ComplexRunWritesListingAndCorrelationColumnsToGeneralOutput) {
    const auto dir = test::scratchDirectory("report_sections");
    auto set = ceriumSet({bkq(2, 2, 300.0, 200.0)}, 2);
    set.correlationCF.push_back({CorrelationKind::Sccf, {bkq(2, 0, 40), bkq(6, 6, 25)}});
    set.switches.correlationSections = true;
    test::TestRun run;
    RunRequest request;
    request.optionText = "/printhm";
    const auto outcome = runEngine(1, test::writeSet(dir, "Ce.par", set), request, run.environment);
    const auto general = readTextFile(dir / outcome.names.general);
    std::vector<std::string> lines;
    std::istringstream stream(general);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    const auto arrays = listedArrays(lines);
    ASSERT_EQ(arrays.size(), 2u);
    EXPECT_EQ(arrays[0].rows(), 7);
    EXPECT_NE(general.find("J-multiplet       <||C(2)||>  <||C(4)||>  <||C(6)||> <||VS(2)||> <||VS(6)||>\n"),
              std::string::npos);
    for (const auto& line : run.log.lines()) EXPECT_EQ(line.rfind("### Complex Hamiltonian", 0), std::string::npos);
}

}  // namespace
}  // namespace orvane
