#pragma once
// Reader of published f^n tables in the fixed-format "cross" layout (one file
// per configuration): a header with the term labels, then blocks each opened by
// a title containing "FOR F" and closed by a line starting "END":
//   CFP   per term "i LABEL m", then m pairs (I4, F12.9), five to a line;
//   U(K)  rows "LABEL LABEL u0 .. u6" for i <= j;
//   V(1K) the same for V(1k);
//   E-S   diagonal rows "LABEL c1 .. c6" (first sub-block: f2, f4, f6 minus their
//         configuration averages, alpha/1000, G2, R7), then off-diagonal
//         "value code" pairs with code = parameter*1000000 + i*1000 + j;
//         the second sub-block (f3..f12) holds the three-body t2 (legacy), t3,
//         t4, t6, t7, t8, parameters 7..12 of the off-diagonal codes;
//   MK,PK rows "LABEL LABEL c1 .. c6": reduced elements of the rank-(11)
//         spin-other-orbit + correlated spin-orbit operator, coefficients of
//         M^0, M^2, M^4, P^2, P^4, P^6.
// Numbers are read with the pattern -?digits.digits, because a negative value
// may touch the one before it.
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include <Eigen/Dense>

namespace orvane {

struct PublishedTables {
    int electrons = 0;
    std::vector<std::string> labels;        // as printed (two-digit indices cut: "2F0")
    bool hasParentage = false;
    Eigen::MatrixXd cfp;                    // terms x parents (parents = largest index read)
    bool hasUnitTensors = false;
    std::array<Eigen::MatrixXd, 7> unitTensor;    // stored half, i <= j
    bool hasDoubleTensors = false;
    std::array<Eigen::MatrixXd, 7> doubleTensor;  // stored half, i <= j
    bool hasElectrostatic = false;
    std::array<Eigen::MatrixXd, 3> coulombCentred;  // f2, f4, f6 minus averages, stored half
    bool hasThreeBody = false;
    std::array<Eigen::MatrixXd, 6> threeBody;       // t2 (legacy), t3, t4, t6, t7, t8, stored half
    bool hasMagnetic = false;
    std::array<Eigen::MatrixXd, 6> magnetic;        // M0 M2 M4 P2 P4 P6 columns, rows as printed
};

// Throws UserError naming the file and line when the layout cannot be read.
PublishedTables parsePublishedTables(std::string_view text, const std::string& fileName);

// The numbers of a line by the pattern -?digits(.digits)? in order.
std::vector<double> numbersInLine(std::string_view line);

}  // namespace orvane
