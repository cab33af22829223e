#pragma once
// The printed description of a point group: its character table (classes of
// the double group, irreps in Koster order with Mulliken names) and the
// crystal-field parameters it allows in its standard orientation.
#include <string>

#include "params/point_group.hpp"

namespace orvane::params {

// "1.414", "-1", "i", "-0.5+0.866i": characters rounded to 3 decimals, integers without them.
std::string characterText(std::complex<double> value);

// Header line, class line, one line per irrep, then "Allowed crystal-field
// parameters: B20 B40 ..." (ImBkq for an imaginary part).
std::string pointGroupDescription(const PointGroup& group);

}  // namespace orvane::params
