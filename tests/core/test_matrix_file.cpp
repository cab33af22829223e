// The matrix files of the interactive eigen solver: parsing, every kind of bad
// input with the line it is reported on, and the printed report.
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "interactive/interactive_eigen.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

using Complex = std::complex<double>;

TEST(MatrixFile, ReadsRealAndComplexEntriesSkippingCommentsAndBlankLines) {
    const std::string text =
        "# comment\r\n"
        "\n"
        "  3  \r\n"
        "! another comment\n"
        "1.5   2,-0.5   0\n"
        "2,0.5 -3       1e-1\n"
        "\t0   .1       +4\n";
    const MatrixFile file = parseMatrixFile(text, "m.txt");
    ASSERT_EQ(file.matrix.rows(), 3);
    EXPECT_TRUE(file.complexEntries);
    EXPECT_EQ(file.matrix(0, 0), Complex(1.5, 0.0));
    EXPECT_EQ(file.matrix(0, 1), Complex(2.0, -0.5));
    EXPECT_EQ(file.matrix(1, 0), Complex(2.0, 0.5));
    EXPECT_EQ(file.matrix(1, 1), Complex(-3.0, 0.0));
    EXPECT_EQ(file.matrix(1, 2), Complex(0.1, 0.0));
    EXPECT_EQ(file.matrix(2, 2), Complex(4.0, 0.0));

    const MatrixFile real = parseMatrixFile("2\n1 0,0\n0 1", "r.txt");  // no final line break
    EXPECT_FALSE(real.complexEntries) << "a zero imaginary part keeps the matrix real";
}

struct BadFile {
    const char* what;
    const char* text;
    int line;
    const char* fragment;
};

class MatrixFileErrors : public ::testing::TestWithParam<BadFile> {};

TEST_P(MatrixFileErrors, NameTheFileTheLineAndTheProblem) {
    const BadFile bad = GetParam();
    if (bad.line == 0) {
        EXPECT_NO_THROW(parseMatrixFile(bad.text, "ok.txt"));
        return;
    }
    try {
        parseMatrixFile(bad.text, "bad.txt");
        FAIL() << bad.what << ": accepted";
    } catch (const UserError& error) {
        EXPECT_EQ(error.title(), "Error in eigen solver");
        ASSERT_TRUE(error.where().has_value()) << bad.what;
        EXPECT_EQ(error.where()->file, "bad.txt");
        EXPECT_EQ(error.where()->line, bad.line) << bad.what << ": " << error.describe();
        EXPECT_NE(std::string(error.what()).find(bad.fragment), std::string::npos)
            << bad.what << ": " << error.what();
    }
}

INSTANTIATE_TEST_SUITE_P(
    BadInput, MatrixFileErrors,
    ::testing::Values(
        BadFile{"empty", "", 1, "holds no matrix"},
        BadFile{"order zero", "0\n", 1, "from 1 to 4000"},
        BadFile{"order too large", "\n4001\n", 2, "from 1 to 4000"},
        BadFile{"missing row", "2\n1 2\n", 2, "ends after 1 of 2 rows"},
        BadFile{"short row", "2\n1\n2 3\n", 2, "row 1 has 1 entries"},
        BadFile{"text entry", "2\n1 x\n0 1\n", 2, "entry 2 of row 1"},
        BadFile{"NaN", "2\n1 0\nnan 1\n", 3, "not a finite number"},
        BadFile{"half a complex entry", "2\n1 1,\n1 1\n", 2, "\"re,im\" pair"},
        BadFile{"extra row", "2\n1 2\n2 1\n3 4\n", 4, "after the last row"},
        BadFile{"real not symmetric", "2\n1 2\n3 1\n", 3, "entry (2,1) is not the complex conjugate"},
        BadFile{"complex not conjugate", "3\n1 0 1,2\n0 1 0\n1,2 0 1\n", 4,
                "entry (3,1) is not the complex conjugate of entry (1,3)"},
        BadFile{"rounding tolerated", "2\n1 0.3333333333333333\n0.33333333333333337 1\n", 0, ""}),
    [](const ::testing::TestParamInfo<BadFile>& info) {
        std::string name;
        for (char c : std::string(info.param.what)) name += std::isalnum(c) ? c : '_';
        return name;
    });

// The example file: blocks [[2, -i], [i, 2]] (eigenvalues 1 with (1, -i)/sqrt 2
// and 3 with (1, i)/sqrt 2) and [[6, 2], [2, 6]] (4 with (1, -1)/sqrt 2, 8 with
// (1, 1)/sqrt 2), worked out by hand; phases make the first largest component
// real and positive.
TEST(InteractiveEigen, ExampleFilePrintsTheHandWorkedEigenpairs) {
    const auto path = test::sourceDirectory() / "examples" / "matrix-hermitian-4.txt";
    MemoryLogBook log;
    ScriptedAsker asker;
    solveMatrixFile(path, log, asker);
    const std::vector<std::string> expected{
        "Eigenvectors",
        "eigenvalue   1.0000000  eigenvector 0.7071068,0.0000000 0.0000000,-0.7071068 "
        "0.0000000,0.0000000 0.0000000,0.0000000",
        "eigenvalue   3.0000000  eigenvector 0.7071068,0.0000000 0.0000000,0.7071068 "
        "0.0000000,0.0000000 0.0000000,0.0000000",
        "eigenvalue   4.0000000  eigenvector 0.0000000,0.0000000 0.0000000,0.0000000 "
        "0.7071068,0.0000000 -0.7071068,0.0000000",
        "eigenvalue   8.0000000  eigenvector 0.0000000,0.0000000 0.0000000,0.0000000 "
        "0.7071068,0.0000000 0.7071068,0.0000000",
    };
    EXPECT_EQ(log.lines(), expected);
    EXPECT_TRUE(asker.messages().empty());
}

}  // namespace
}  // namespace orvane
