#include "engine/hamiltonian_printout.hpp"

#include <fmt/format.h>

#include "core/number_format.hpp"

namespace orvane {

namespace {
constexpr int kValuesPerLine = 8;
constexpr const char* kElementPicture = "#######0.0000";
}  // namespace

std::vector<std::string> hamiltonianPrintoutLines(const JBasis& basis, const std::vector<Eigen::MatrixXd>& blocks) {
    std::vector<std::string> lines{
        fmt::format("### Hamiltonian matrix elements of dim = {}", basis.states.size())};
    int offset = 0;  // states before the block, in the printed order
    for (const auto& block : blocks) {
        const auto size = static_cast<int>(block.rows());
        for (int i = 0; i < size; ++i) {
            const int row = offset + i + 1;
            lines.push_back(fmt::format("Hamiltonian matrix row = {} (first element for column={})", row, row));
            std::string text;
            for (int j = i; j < size; ++j) {
                text += formatNumber(block(i, j), kElementPicture);
                if ((j - i + 1) % kValuesPerLine == 0 || j + 1 == size) {
                    lines.push_back(text);
                    text.clear();
                }
            }
        }
        offset += size;
    }
    lines.push_back("### End of Hamiltonian matrix elements ###");
    return lines;
}

}  // namespace orvane
