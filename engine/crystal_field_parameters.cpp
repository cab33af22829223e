#include "engine/crystal_field_parameters.hpp"

#include <map>
#include <string>
#include <utility>

#include <fmt/format.h>

#include "core/user_error.hpp"
#include "engine/engine_errors.hpp"

namespace orvane {

namespace {

std::string keyText(const CrystalFieldRow& row) { return fmt::format("B({},{})", row.k, row.q); }

}  // namespace

CrystalFieldValues crystalFieldParametersOf(const ParameterSet& set, bool conjugate, bool complex) {
    CrystalFieldValues values;
    if (set.crystalField.empty()) return values;
    if (set.cfConvention != CfConvention::Wybourne)
        throw UserError(kCfHamiltonianError, "only crystal-field parameters in Wybourne's convention are handled by "
                                  "the engine so far; convert the parameters first");
    std::map<std::pair<int, int>, std::pair<double, double>> byKey;
    for (const auto& row : set.crystalField) {
        requireFiniteParameter(row.re.value, keyText(row));
        requireFiniteParameter(row.im.value, keyText(row));
        if (row.k != 2 && row.k != 4 && row.k != 6)
            throw UserError(kCfHamiltonianError, fmt::format("{}: rank k must be 2, 4 or 6", keyText(row)));
        if (row.q < 0 || row.q > row.k)
            throw UserError(kCfHamiltonianError, fmt::format("{}: q must lie between 0 and k", keyText(row)));
        if (row.q == 0 && row.im.value != 0.0)
            throw UserError(kCfHamiltonianError, fmt::format("{}: B(k,0) is real; the imaginary part must be 0", keyText(row)));
        if (!complex && row.im.value != 0.0)
            throw UserError(kCfHamiltonianError, fmt::format("{}: imaginary part {} needs the complex engine, which is "
                                                  "not available yet",
                                                  keyText(row), row.im.value));
        byKey[{row.k, row.q}] = {row.re.value, row.im.value};
    }
    const double sign = conjugate ? -1.0 : 1.0;
    for (const auto& [kq, value] : byKey) {
        if (value.first == 0.0 && value.second == 0.0) continue;
        if (set.fold < 1 || kq.second % set.fold != 0)
            throw UserError(kCfHamiltonianError, fmt::format("B({},{}) couples different blocks of the fold {}: "
                                                  "the fold of symmetry axis does not match the parameters",
                                                  kq.first, kq.second, set.fold));
        values.keys.push_back({kq.first, kq.second});
        values.re.push_back(sign * value.first);
        values.im.push_back(sign * value.second);
    }
    return values;
}

}  // namespace orvane
