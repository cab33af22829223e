#pragma once
// Parameter sets shared by the benchmark programs: typical magnitudes for the
// ion (not fitted values); timings do not depend on them.
#include <array>
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

// A lanthanide at a site of fold 2 (C2v-like real parameters); main = EAVG, F2, F4, F6, ZETA.
inline ParameterSet lanthanideAtFold2(int electrons, std::array<double, 5> main) {
    ParameterSet set;
    set.electronCount = electrons;
    set.fold = 2;
    set.mainFreeIon = {row("EAVG", main[0]), row("F2", main[1]), row("F4", main[2]), row("F6", main[3]),
                       row("ZETA", main[4])};
    set.otherFreeIon = {row("ALPHA", 18), row("BETA", -600), row("GAMMA", 1800)};
    set.crystalField = {bkq(2, 0, -250), bkq(2, 2, -100), bkq(4, 0, 600), bkq(4, 2, 400), bkq(4, 4, 550),
                        bkq(6, 0, 500), bkq(6, 2, -800), bkq(6, 4, -300), bkq(6, 6, -700)};
    return set;
}
// Er3+ (f11 through f3, 364 states) and Nd3+ (f3) at a site of fold 2.
inline ParameterSet erbium() { return lanthanideAtFold2(11, {0, 97000, 68000, 53000, 2370}); }
inline ParameterSet neodymium() { return lanthanideAtFold2(3, {0, 72000, 52000, 35000, 880}); }

}  // namespace orvane::bench
