// The matrix files of the interactive eigen solver: parsing and bad input.
#include <string>

#include <gtest/gtest.h>

#include "interactive/interactive_eigen.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"

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
    Eigen::MatrixXcd expected(3, 3);
    expected << 1.5, Complex(2, -0.5), 0, Complex(2, 0.5), -3, 0.1, 0, 0.1, 4;
    EXPECT_EQ(file.matrix, expected);

    const MatrixFile real = parseMatrixFile("2\n1 0,0\n0 1", "r.txt");  // no final line break
    EXPECT_FALSE(real.complexEntries) << "a zero imaginary part keeps the matrix real";
}

// Bad input is refused with the file and the line.
TEST(MatrixFile, BadInputNamesTheFileAndTheLine) {
    EXPECT_NO_THROW(parseMatrixFile("2\n1 0.3333333333333333\n0.33333333333333337 1\n", "ok.txt"));  // rounding
    const std::pair<const char*, int> cases[] = {
        {"", 1},                       {"0\n", 1},           {"\n4001\n", 2},
        {"2\n1 2\n", 2},               {"2\n1\n2 3\n", 2},   {"2\n1 x\n0 1\n", 2},
        {"2\n1 0\nnan 1\n", 3},        {"2\n1 1,\n1 1\n", 2}, {"2\n1 2\n2 1\n3 4\n", 4},
        {"2\n1 2\n3 1\n", 3},          {"3\n1 0 1,2\n0 1 0\n1,2 0 1\n", 4},
    };
    for (const auto& [text, line] : cases) {
        SCOPED_TRACE(text);
        try {
            parseMatrixFile(text, "bad.txt");
            ADD_FAILURE() << "accepted";
        } catch (const UserError& error) {
            ASSERT_TRUE(error.where().has_value());
            EXPECT_EQ(error.where()->file, "bad.txt");
            EXPECT_EQ(error.where()->line, line);
        }
    }
}

}  // namespace
}  // namespace orvane
