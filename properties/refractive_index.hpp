#pragma once
// Refractive index of the host from the Sellmeier equation (standard form,
// wavelength lambda in micrometres, C_i in um^2):
//   n^2(lambda) - 1 = sum_i B_i lambda^2 / (lambda^2 - C_i)
// Default sets (`sellmeierForHost`):
//   "YAG"    Y3Al5O12, Zelmon, Small & Page, Appl. Opt. 37, 4933 (1998):
//            B = 2.282, 3.27644; C = 0.01185, 282.734 um^2 (0.4 - 5 um)
//   "silica" fused SiO2, Malitson, J. Opt. Soc. Am. 55, 1205 (1965):
//            B = 0.6961663, 0.4079426, 0.8974794;
//            C = 0.0684043^2, 0.1162414^2, 9.896161^2 um^2 (0.21 - 3.7 um)
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace orvane {

struct SellmeierSet {
    std::vector<std::pair<double, double>> terms;  // (B_i, C_i in um^2)
};

// The system's message when the equation gives no usable index (n^2 <= 0,
// a pole, or a non-finite value).
class RefractiveIndexError : public std::runtime_error {
public:
    explicit RefractiveIndexError(double wavelengthNm);
    double wavelength() const { return wavelength_; }

private:
    double wavelength_;
};

// Index at a wavelength in nm; throws RefractiveIndexError.
double sellmeierIndex(const SellmeierSet& set, double wavelengthNm);

// "YAG", "silica" (any case); nullopt for an unknown host.
std::optional<SellmeierSet> sellmeierForHost(const std::string& host);
std::vector<std::string> knownSellmeierHosts();

// Either a constant index or a Sellmeier set.
struct RefractiveIndex {
    std::optional<SellmeierSet> sellmeier;
    double constant = 1.0;
    double at(double wavelengthNm) const { return sellmeier ? sellmeierIndex(*sellmeier, wavelengthNm) : constant; }
};

}  // namespace orvane
