#pragma once
// Parameter sets shared by the benchmark programs: typical magnitudes for the
// ion (not fitted values); timings do not depend on them.
#include <string>

#include "engine/parameter_set.hpp"

namespace orvane::bench {

inline FreeIonRow row(const std::string& name, double value) { return {name, {std::to_string(value), value}}; }

inline CrystalFieldRow bkq(int k, int q, double re, double im = 0.0) {
    return {k, q, {std::to_string(re), re}, {std::to_string(im), im}};
}

// Gd3+ (f7, 3432 |JM> states) at a site of fold 3.
inline ParameterSet gadolinium() {
    ParameterSet set;
    set.title = "Gd3+ benchmark";
    set.electronCount = 7;
    set.fold = 3;
    set.mainFreeIon = {row("EAVG", 0), row("F2", 84000), row("F4", 61000), row("F6", 44000), row("ZETA", 1500)};
    set.otherFreeIon = {row("ALPHA", 18), row("BETA", -600), row("GAMMA", 1500)};
    set.crystalField = {bkq(2, 0, -300), bkq(4, 0, 500), bkq(4, 3, 400), bkq(6, 0, 600), bkq(6, 3, -300),
                        bkq(6, 6, 350)};
    return set;
}

}  // namespace orvane::bench
