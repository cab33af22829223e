#pragma once
// The recursion that carries a k-body operator through the shells: zero below
// k electrons, a seed table in f^k, escalation through the coefficients of
// fractional parentage up to half filling (f^(n-1) -> f^n), and the conjugate
// shell f^(14-n) for n above 7 with the operator's conjugation rule.
#include <cstddef>
#include <vector>

#include "tables/reduced_tables.hpp"
#include "tables/table_builder.hpp"

namespace orvane {

inline constexpr int kHalfFilledShell = 7;
inline constexpr int kFullShell = 14;

// `tables[n]` holds the terms, parents and CFPs of f^n for n = 0..7. Returns
// the operators of f^0..f^14.
//   zero(size)                         operators of a shell with too few electrons
//   seed(terms)                        the seed table in f^seedShell
//   escalate(n, terms, parents, cfp, below)   f^(n-1) -> f^n
//   conjugate(operators of f^(14-n))   operators of f^n, n > 7
template <typename Operators, typename Zero, typename Seed, typename Escalate, typename Conjugate>
std::vector<Operators> operatorsOfEveryShell(const std::vector<ConfigurationTables>& tables,
                                             int seedShell, Zero zero, Seed seed,
                                             Escalate escalate, Conjugate conjugate) {
    std::vector<Operators> result(kFullShell + 1);
    for (int n = 0; n <= kHalfFilledShell; ++n) {
        const auto& t = tables.at(static_cast<std::size_t>(n));
        const int size = n == 0 ? 1 : static_cast<int>(t.terms.size());
        auto& slot = result[static_cast<std::size_t>(n)];
        if (n < seedShell)
            slot = zero(size);
        else if (n == seedShell)
            slot = seed(t.terms);
        else
            slot = escalate(n, spinOrbitOf(t.terms), spinOrbitOf(t.parents), t.cfp,
                            result[static_cast<std::size_t>(n - 1)]);
    }
    for (int n = kHalfFilledShell + 1; n <= kFullShell; ++n)
        result[static_cast<std::size_t>(n)] =
            conjugate(result[static_cast<std::size_t>(kFullShell - n)]);
    return result;
}

}  // namespace orvane
