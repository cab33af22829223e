#pragma once
// Plain records of the crystal-field tools: the rows an editor shows, the
// complex parameters of one set and the unit and convention codes.
//
// A row (k, q, Re, Im) with q >= 0 stands for the Wybourne-normalised
// B(k,q) = Re + i Im; the negative-q partner follows from hermiticity,
// B(k,-q) = (-1)^q B(k,q)*.
#include <array>
#include <complex>
#include <string>
#include <vector>

namespace orvane::params {

// A value cell as typed: a plain number or "value(uncertainty)" (see value_cell.hpp).
struct ValueCell {
    std::string text;
    double value = 0.0;
};

struct CfRow {
    int k = 0;
    int q = 0;
    ValueCell re;
    ValueCell im;
};

// The crystal-field rows of one editor, with its mode: in real mode only the
// Re column exists and conversions leave the Im cells alone.
struct CfTable {
    std::vector<CfRow> rows;
    bool complexMode = true;
};

enum class CfNormalisation { Wybourne, Stevens, UnitTensor };

// Energy-unit codes of the parameter file: 1 cm^-1, 2 meV, 3 K, 4 mRy.
enum class EnergyUnitCode { Wavenumber = 1, MilliElectronVolt = 2, Kelvin = 3, MilliRydberg = 4 };

// Complex B(k,q) for k = 0..6, q = 0..k (index [k][q]); entries with q > k unused.
using BkqArray = std::array<std::array<std::complex<double>, 7>, 7>;

}  // namespace orvane::params
