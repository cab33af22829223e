#include "engine/t2_correction.hpp"

#include <cmath>

#include <fmt/format.h>

#include "core/number_format.hpp"

namespace orvane {

T2SlaterCorrection t2SlaterCorrection(int electrons, double t2) {
    T2SlaterCorrection correction;
    correction.t2 = t2;
    correction.deltaE3 = (electrons - 2) * t2 / (70.0 * std::sqrt(2.0));
    correction.deltaF = {225.0 * 11.0 / 42.0 * correction.deltaE3, 1089.0 * 4.0 / 77.0 * correction.deltaE3,
                         184041.0 / 25.0 * -7.0 / 462.0 * correction.deltaE3};
    return correction;
}

std::vector<std::string> t2CorrectionLogLines(const T2SlaterCorrection& correction,
                                              const std::array<double, 3>& uncorrected) {
    constexpr const char* kPicture = "#######0.0000";
    std::vector<std::string> lines{"T2 = " + formatNumber(correction.t2, kPicture),
                                   "t2 correction for Slater parameters:"};
    for (int i = 0; i < 3; ++i)
        lines.push_back(fmt::format("F^{} correction = {}", 2 * (i + 1), formatNumber(correction.deltaF[i], kPicture)));
    lines.push_back("T2 Corrected values of Slater parameters:");
    for (int i = 0; i < 3; ++i)
        lines.push_back(fmt::format("F^{} = {}", 2 * (i + 1),
                                    formatNumber(uncorrected[i] + correction.deltaF[i], kPicture)));
    return lines;
}

}  // namespace orvane
