// The d(J) calculator's reading of "J beta [order [heading]]" and its printed block.
#include <cmath>

#include "core/angular.hpp"
#include "interactive/calculators.hpp"
#include "core/number_format.hpp"
#include "core/text.hpp"

namespace orvane {

namespace {

// A number, or a text with a '/' after its first character read as the number
// before the '/' divided by 2 ("5/2" and "5/3" are both 2.5).
std::optional<double> readHalvedNumber(std::string_view field) {
    if (const auto value = parseNumber(field)) return value;
    const std::size_t slash = field.find('/');
    if (slash == std::string_view::npos || slash == 0) return std::nullopt;
    const auto before = parseNumber(field.substr(0, slash));
    if (!before) return std::nullopt;
    return *before / 2.0;
}

// An integer field; a fractional number is rounded to the nearest integer.
std::optional<int> readWholeNumber(std::string_view field) {
    const auto value = parseNumber(field);
    if (!value || std::fabs(*value) > 1.0e9) return std::nullopt;
    return static_cast<int>(std::lround(*value));
}

// The general number form without the blank standing for a plus sign.
std::string plainNumber(double value) {
    const std::string text = generalNumber(value);
    return (!text.empty() && text.front() == ' ') ? text.substr(1) : text;
}

// A projection given twice, in the " #0;-#0" picture; half-integers over 2.
std::string projectionLabel(int twiceM, bool halfIntegral) {
    if (!halfIntegral) return formatNumber(twiceM / 2, " #0;-#0");
    return formatNumber(twiceM, " #0;-#0") + "/2";
}

}  // namespace

std::optional<RotationMatrixRequest> readRotationMatrixRequest(std::string_view line) {
    const std::vector<std::string> fields = splitAnswerFields(line);
    if (fields.size() < 2) return std::nullopt;
    RotationMatrixRequest request;
    const auto J = readHalvedNumber(fields[0]);
    const auto beta = readHalvedNumber(fields[1]);
    if (!J || !beta || *J < 0.0) return std::nullopt;
    request.J = *J;
    request.betaDegrees = *beta;
    if (fields.size() >= 3) {
        const auto order = readWholeNumber(fields[2]);
        if (!order) return std::nullopt;
        request.order = *order;
    }
    if (fields.size() >= 4) {
        const auto heading = readWholeNumber(fields[3]);
        if (!heading) return std::nullopt;
        request.heading = *heading;
    }
    return request;
}

std::vector<std::string> rotationMatrixBlock(const RotationMatrixRequest& request) {
    // Degrees to radians as beta / 45 x arctan(1).
    const double betaRadians = request.betaDegrees / 45.0 * std::atan(1.0);
    const Eigen::MatrixXd d = RotationMatrixD(request.J, betaRadians);
    const int n = static_cast<int>(d.rows());
    const int twiceJ = n - 1;
    const bool halfIntegral = (twiceJ % 2) != 0;
    const std::string jText = plainNumber(twiceJ / 2.0);
    // Index k of the printed order to the matrix index: m from -J up, or from +J down.
    const auto index = [&](int k) { return request.order < 1 ? n - 1 - k : k; };

    std::vector<std::string> lines;
    lines.push_back("Rotation matrix d(J)mm'(beta) for J = " + jText + " and beta = " +
                    plainNumber(request.betaDegrees));
    const bool labelled = request.heading != 0;
    if (labelled) {
        std::string heading = "J= " + jText;
        for (int k = 0; k < n; ++k) heading += "\t m'=" + projectionLabel(2 * index(k) - twiceJ, halfIntegral);
        lines.push_back(heading);
    }
    for (int r = 0; r < n; ++r) {
        const int row = index(r);
        std::string text = labelled ? " m=" + projectionLabel(2 * row - twiceJ, halfIntegral) + "\t" : "";
        for (int c = 0; c < n; ++c) {
            if (c > 0) text += "\t";
            text += formatNumber(d(row, index(c)), "#0.######");
        }
        lines.push_back(text);
    }
    return lines;
}

}  // namespace orvane
