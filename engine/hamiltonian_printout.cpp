#include "engine/hamiltonian_printout.hpp"

#include <fmt/format.h>

#include "core/number_format.hpp"

namespace orvane {

namespace {
constexpr int kValuesPerLine = 8;
constexpr const char* kElementPicture = "#######0.0000";
constexpr const char* kEndLine = "### End of Hamiltonian matrix elements ###";

// One listed row: its heading, then matrix(row, first..last) eight values a line.
// `rowNumber` and `firstColumn` are the 1-based numbers printed in the heading.
void appendRow(std::vector<std::string>& lines, const Eigen::MatrixXd& matrix, Eigen::Index row,
               Eigen::Index first, int rowNumber, int firstColumn) {
    lines.push_back(
        fmt::format("Hamiltonian matrix row = {} (first element for column={})", rowNumber, firstColumn));
    std::string text;
    const auto last = matrix.cols();
    for (Eigen::Index j = first; j < last; ++j) {
        text += formatNumber(matrix(row, j), kElementPicture);
        if ((j - first + 1) % kValuesPerLine == 0 || j + 1 == last) {
            lines.push_back(text);
            text.clear();
        }
    }
}

}  // namespace

std::vector<std::string> hamiltonianPrintoutLines(const JBasis& basis, const std::vector<Eigen::MatrixXd>& blocks) {
    std::vector<std::string> lines{
        fmt::format("### Hamiltonian matrix elements of dim = {}", basis.states.size())};
    int offset = 0;  // states before the block, in the printed order
    for (const auto& block : blocks) {
        const auto size = static_cast<int>(block.rows());
        for (int i = 0; i < size; ++i) appendRow(lines, block, i, i, offset + i + 1, offset + i + 1);
        offset += size;
    }
    lines.push_back(kEndLine);
    return lines;
}

Eigen::MatrixXd packedHermitianArray(const Eigen::MatrixXcd& matrix) {
    Eigen::MatrixXd packed = matrix.real();
    for (Eigen::Index i = 0; i < matrix.rows(); ++i)
        for (Eigen::Index j = 0; j < i; ++j) packed(i, j) = matrix(i, j).imag();
    return packed;
}

std::vector<std::string> complexHamiltonianPrintoutLines(const Eigen::MatrixXcd& block) {
    const Eigen::MatrixXd packed = packedHermitianArray(block);
    const auto size = static_cast<int>(packed.rows());
    std::vector<std::string> lines{fmt::format(
        "### Complex Hamiltonian matrix elements (real/imaginary ones at upper/lower diagonal) of dim = {}", size)};
    for (int i = 0; i < size; ++i) appendRow(lines, packed, i, 0, i + 1, 1);
    lines.push_back(kEndLine);
    return lines;
}

}  // namespace orvane
