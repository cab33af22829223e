#pragma once
// Changes of crystal-field normalisation, applied in place to the rows of a table:
// Stevens <-> Wybourne (factor 1/lambda or lambda; the imaginary column takes the
// negated factor because the Stevens sine-type parameter is -lambda Im B) and
// Wybourne <-> unit tensor (factor c_k or 1/c_k).
//
// Rows are checked one by one: a row with k > 6 or |q| > k stops the conversion
// (earlier rows keep their new values). Rows whose rank has no factor (k = 0 and
// odd k) are left unchanged.
#include <functional>
#include <optional>

#include "params/cf_records.hpp"

namespace orvane::params {

enum class CfConversion { StevensToWybourne, WybourneToStevens, WybourneToUnit, UnitToWybourne };

// 1-based number of the first row that failed the check, or std::nullopt.
std::optional<int> applyConversion(CfTable& table, CfConversion conversion);

// The same for user-level operations: throws UserError "Incorrect values of kq in
// CFP!" titled "Error in CFP conversion".
void convertTable(CfTable& table, CfConversion conversion);

// The factors of one row's real column (the imaginary column of the Stevens
// conversions takes the negated factor). 0 when the row has no factor.
double conversionFactor(CfConversion conversion, int k, int q);

// The conversion that brings rows of a normalisation to Wybourne form (none for Wybourne).
std::optional<CfConversion> conversionToWybourne(CfNormalisation from);
std::optional<CfConversion> conversionFromWybourne(CfNormalisation to);

// The normalisation a conversion expects its rows in, and the one it leaves them in.
CfNormalisation conversionSource(CfConversion conversion);
CfNormalisation conversionTarget(CfConversion conversion);

// Runs a rotation of the frame on rows of the given normalisation. A rotation
// mixes the q of one rank: Wybourne and unit-tensor rows (one factor per rank)
// rotate as they stand, Stevens rows (a factor per k and q) pass through
// Wybourne form and back.
void rotateInTensorForm(CfTable& table, CfNormalisation form, const std::function<void(CfTable&)>& rotation);

}  // namespace orvane::params
