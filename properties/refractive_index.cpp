#include "properties/refractive_index.hpp"

#include <algorithm>
#include <cctype>
#include <cmath>

#include <fmt/format.h>

namespace orvane {

RefractiveIndexError::RefractiveIndexError(double wavelengthNm)
    : std::runtime_error(fmt::format("### Error in using Sellmeier Equation to calculate Refractive Index. \n"
                                     "Wavelength ={}",
                                     wavelengthNm)),
      wavelength_(wavelengthNm) {}

double sellmeierIndex(const SellmeierSet& set, double wavelengthNm) {
    const double lambda2 = std::pow(wavelengthNm / 1000.0, 2);
    double square = 1.0;
    for (const auto& [b, c] : set.terms) {
        const double denominator = lambda2 - c;
        if (std::abs(denominator) < 1e-12) throw RefractiveIndexError(wavelengthNm);
        square += b * lambda2 / denominator;
    }
    if (!std::isfinite(square) || square <= 0.0) throw RefractiveIndexError(wavelengthNm);
    return std::sqrt(square);
}

std::optional<SellmeierSet> sellmeierForHost(const std::string& host) {
    std::string name = host;
    std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) { return std::tolower(c); });
    if (name == "yag") return SellmeierSet{{{2.282, 0.01185}, {3.27644, 282.734}}};
    if (name == "silica")
        return SellmeierSet{{{0.6961663, 0.0684043 * 0.0684043},
                             {0.4079426, 0.1162414 * 0.1162414},
                             {0.8974794, 9.896161 * 9.896161}}};
    return std::nullopt;
}

std::vector<std::string> knownSellmeierHosts() { return {"YAG", "silica"}; }

}  // namespace orvane
