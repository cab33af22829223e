#pragma once
// A crystal-field row typed as the editor's cells ("value" or "value(unc)").
#include <string>

#include "params/cf_records.hpp"
#include "params/value_cell.hpp"

namespace orvane::params::test {

inline CfRow row(int k, int q, const std::string& re, const std::string& im = "0") {
    CfRow r;
    r.k = k;
    r.q = q;
    r.re = ValueCell{re, parseValueCell(re).value};
    r.im = ValueCell{im, parseValueCell(im).value};
    return r;
}

}  // namespace orvane::params::test
