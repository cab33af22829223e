// Crystal-field and free-ion parameter forms: the Stevens factors, conversions
// between the Stevens, Wybourne and unit-tensor conventions, energy units, the
// Slater and Racah electrostatic forms, rotational invariants, crystal-field
// strength and the cubic approximations.
#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include "core/user_error.hpp"
#include "params/cf_conventions.hpp"
#include "params/cf_invariants.hpp"
#include "params/cf_rotation.hpp"
#include "params/cubic_approximation.hpp"
#include "params/energy_units.hpp"
#include "params/free_ion_conversion.hpp"
#include "params/stevens_lambda.hpp"
#include "params/value_cell.hpp"

namespace orvane::params {
namespace {

// A crystal-field row typed as the editor's cells ("value" or "value(unc)").
CfRow row(int k, int q, const std::string& re, const std::string& im = "0") {
    CfRow r;
    r.k = k;
    r.q = q;
    r.re = ValueCell{re, parseValueCell(re).value};
    r.im = ValueCell{im, parseValueCell(im).value};
    return r;
}

TEST(StevensLambda, FactorsOfThePolynomialIdentity) {
    // lambda(k,q) relating Stevens A(k,q)<r^k> to Wybourne B(k,q) (Rudowicz, J. Phys. C 18, 1415 (1985)).
    struct Case { int k, q; double lambda; };
    const Case cases[] = {{2, 0, 0.5},       {2, 1, -2.449490}, {2, 2, std::sqrt(6.0) / 2},
                          {4, 0, 0.125},     {4, 1, -std::sqrt(5.0) / 2},
                          {4, 2, std::sqrt(10.0) / 4}, {4, 3, -2.958040}, {4, 4, 1.045825},
                          {6, 0, 0.0625},    {6, 1, -std::sqrt(42.0) / 8},
                          {6, 2, std::sqrt(105.0) / 16}, {6, 3, -std::sqrt(105.0) / 8},
                          {6, 4, 0.701561},  {6, 5, -3.290612}, {6, 6, 0.949918}};
    for (const Case& c : cases) {
        EXPECT_NEAR(stevensFactor(c.k, c.q), c.lambda, 5e-7) << c.k << c.q;
        EXPECT_NEAR(stevensFactor(c.k, -c.q), c.lambda, 5e-7) << "uses |q|";
    }
    EXPECT_EQ(stevensFactor(2, 3), 0.0);
}

TEST(StevensConversion, EdgeCasesOfTheFactors) {
    CfTable table;
    table.rows = {row(2, 0, "1"),      row(4, 0, "1"),        row(6, 0, "1"),
                  row(2, 1, "6", "6"), row(6, 5, "100", "10"), row(3, 1, "5", "5")};
    convertTable(table, CfConversion::StevensToWybourne);
    // (2,1): Re times -1/sqrt(6); Im times +1/sqrt(6): the imaginary part keeps its sign.
    EXPECT_NEAR(table.rows[3].re.value, -6.0 / std::sqrt(6.0), 1e-12);
    EXPECT_EQ(table.rows[3].im.text, "2.45");
    // (6,5): times -8/(3 sqrt 77).
    EXPECT_NEAR(table.rows[4].re.value, -800.0 / (3.0 * std::sqrt(77.0)), 1e-10);
}

TEST(StevensConversion, RoundTripsToTheWrittenPrecision) {
    for (CfConversion there : {CfConversion::WybourneToStevens, CfConversion::WybourneToUnit}) {
        CfTable table;
        for (int k = 2; k <= 6; k += 2)
            for (int q = 0; q <= k; ++q) table.rows.push_back(row(k, q, std::to_string(100 + 37 * q - 11 * k) + ".25", q ? std::to_string(-13 * q) + ".5" : "0.0"));
        const CfTable original = table;
        convertTable(table, there);
        convertTable(table, there == CfConversion::WybourneToStevens
                                ? CfConversion::StevensToWybourne
                                : CfConversion::UnitToWybourne);
        for (std::size_t i = 0; i < table.rows.size(); ++i) {
            EXPECT_EQ(table.rows[i].re.text, original.rows[i].re.text) << i;
            EXPECT_EQ(table.rows[i].im.text, original.rows[i].im.text) << i;
        }
    }
}

TEST(EnergyUnits, ConstantsFactorsAndScopes) {
    EXPECT_NEAR(*unitConversionFactor(EnergyUnitCode::Wavenumber, EnergyUnitCode::MilliElectronVolt) * 100.0,
                12.398134, 1e-6);  // 100 cm^-1 = 12.398... meV with 1 meV = 8.06573 cm^-1
    EXPECT_FALSE(unitConversionFactor(EnergyUnitCode::Kelvin, EnergyUnitCode::MilliElectronVolt));
    EXPECT_FALSE(unitConversionFactor(EnergyUnitCode::Kelvin, EnergyUnitCode::Kelvin));

    struct Case { UnitScope scope; bool cf, major, minor; };
    for (const Case c : {Case{UnitScope::All, true, true, true}, Case{UnitScope::CrystalField, true, false, false}}) {
        ParameterValues values;
        values.unit = EnergyUnitCode::Kelvin;
        values.crystalField.rows = {row(2, 2, "100(10)", "50")};
        values.mainFreeIon = {ValueCell{"1000", 1000}};
        values.otherFreeIon = {ValueCell{"20", 20}, ValueCell{"0.56M0", 0.56}};
        convertEnergyUnit(values, EnergyUnitCode::Wavenumber, c.scope);
        EXPECT_EQ(values.unit, EnergyUnitCode::Wavenumber);
        EXPECT_EQ(values.crystalField.rows[0].re.text, c.cf ? "69.5(6.95)" : "100(10)");
        EXPECT_EQ(values.crystalField.rows[0].im.text, c.cf ? "34.75" : "50");
        EXPECT_EQ(values.mainFreeIon[0].text, c.major ? "695.02" : "1000");
        EXPECT_EQ(values.otherFreeIon[0].text, c.minor ? "13.9" : "20");
        EXPECT_EQ(values.otherFreeIon[1].text, "0.56M0");
    }
}

TEST(FreeIonConversion, RacahRelationsAndSlaterDenominators) {
    // F_k of Pr3+ (computed by hand from F^2 = 68955, F^4 = 50505, F^6 = 33098 with D_k = 225, 1089, 7361.64).
    const ElectrostaticTriple fUpper{68955.0, 50505.0, 33098.0};
    const ElectrostaticTriple fLower = lowerSlaterFromUpper(fUpper);
    EXPECT_NEAR(fLower[0], 306.46667, 1e-5);
    EXPECT_NEAR(fLower[1], 46.377410, 1e-5);
    EXPECT_NEAR(fLower[2], 4.4960090, 1e-6);
    // E^k from F_k (Racah 1949), checked on F_2 = 1, F_4 = F_6 = 0 -> (70/9, 1/9, 5/3).
    const ElectrostaticTriple e = racahFromLowerSlater({1.0, 0.0, 0.0});
    EXPECT_NEAR(e[0], 70.0 / 9.0, 1e-14);
    EXPECT_NEAR(e[1], 1.0 / 9.0, 1e-14);
    EXPECT_NEAR(e[2], 5.0 / 3.0, 1e-14);
    const ElectrostaticTriple back = upperSlaterFromLower(lowerSlaterFromRacah(racahFromLowerSlater(fLower)));
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(back[i], fUpper[i], 1e-8);
}

// Pr3+:LaF3 crystal-field parameters, Carnall et al., J. Chem. Phys. 90, 3443 (1989), Table I.
CfTable prLaF3() {
    CfTable t;
    t.rows = {row(2, 0, "-218"), row(2, 2, "-120"), row(4, 0, "738"), row(4, 2, "431"),
              row(4, 4, "616"),  row(6, 0, "679"), row(6, 2, "-921"), row(6, 4, "-348"),
              row(6, 6, "-788")};
    return t;
}

TEST(Invariants, PublishedParameterSetInEveryNormalisation) {
    // s_k = (sum_q |B(k,q)|^2 / (2k+1))^(1/2) of Pr3+:LaF3 (Carnall et al. 1989, Table I), computed:
    // 123.551, 431.416, 529.268.
    const CfTable wybourne = prLaF3();
    const double expected[3] = {123.551, 431.416, 529.268};
    for (CfConversion c : {CfConversion::WybourneToStevens, CfConversion::WybourneToUnit}) {
        CfTable table = wybourne;
        convertTable(table, c);
        const CfNormalisation form = c == CfConversion::WybourneToStevens
                                         ? CfNormalisation::Stevens
                                         : CfNormalisation::UnitTensor;
        const Invariants inv = computeInvariants(table, form);
        for (int i = 0; i < 3; ++i) EXPECT_NEAR(inv.s[i], expected[i], 1e-3) << i;
    }
    const Invariants inv = computeInvariants(wybourne, CfNormalisation::Wybourne);
    EXPECT_NEAR(inv.strength,
                std::sqrt((expected[0] * expected[0] + expected[1] * expected[1] +
                           expected[2] * expected[2]) / 3.0), 1e-2);
    EXPECT_EQ(inv.sigmaS[0], 0.0);  // no uncertainties given
}

TEST(Invariants, UncertaintiesPropagateToFirstOrder) {
    // One rank-2 parameter: s_2 = sqrt(2/5) |B22| exactly, so sigma(s_2) = sqrt(2/5) sigma(B22).
    CfTable table;
    table.rows = {row(2, 2, "30(2)", "40(1)")};
    const Invariants inv = computeInvariants(table, CfNormalisation::Wybourne);
    EXPECT_NEAR(inv.s[0], std::sqrt(2.0 / 5.0) * 50.0, 1e-12);
    // d|B|/dRe = 0.6, d|B|/dIm = 0.8 -> sigma|B| = sqrt(0.36*4 + 0.64*1) = sqrt(2.08).
    EXPECT_NEAR(inv.sigmaS[0], std::sqrt(2.0 / 5.0) * std::sqrt(2.08), 1e-12);
    EXPECT_NEAR(inv.strength, inv.s[0] / std::sqrt(3.0), 1e-12);
    EXPECT_NEAR(inv.sigmaStrength, inv.sigmaS[0] / std::sqrt(3.0), 1e-12);
}

TEST(Invariants, UnchangedByRotation) {
    std::mt19937 rng(11);
    std::uniform_real_distribution<double> u(-300, 300);
    CfTable table;
    for (int k = 2; k <= 6; k += 2)
        for (int q = 0; q <= k; ++q) table.rows.push_back(row(k, q, "0", "0"));
    for (CfRow& r : table.rows) {
        r.re = makeCell(u(rng), kRotatedPicture);
        r.im = makeCell(r.q ? u(rng) : 0.0, kRotatedPicture);
    }
    const Invariants before = computeInvariants(table, CfNormalisation::Wybourne);
    const Invariants after = computeInvariants(rotateTable(table, {17, 63, -121}), CfNormalisation::Wybourne);
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(before.s[i], after.s[i], 1e-9);
}

BkqArray arrayOf(const std::vector<CubicParameter>& set) {
    BkqArray b{};
    for (const CubicParameter& p : set) b[p.k][p.q] = p.value;
    return b;
}

TEST(CubicApproximation, SetsKeepTheirInvariantsAndRotateIntoEachOther) {
    Invariants inv;
    inv.s = {0.0, 300.0, 200.0};
    inv.sigmaS = {0.0, 3.0, 2.0};
    const auto c4 = cubicSet(inv, 1.0, 1.0, CubicAxis::Fourfold001);
    for (CubicAxis axis : {CubicAxis::Fourfold001, CubicAxis::Threefold111}) {
        const auto set = cubicSet(inv, 1.0, -1.0, axis);
        CfTable table;
        for (const CubicParameter& p : set) {
            CfRow r;
            r.k = p.k;
            r.q = p.q;
            r.re = makeCell(p.value, kRotatedPicture);
            table.rows.push_back(r);
        }
        const Invariants back = computeInvariants(table, CfNormalisation::Wybourne);
        EXPECT_NEAR(back.s[1], 300.0, 1e-6);
        EXPECT_NEAR(back.s[2], 200.0, 1e-6);
    }
    // [001] rotated by C4toC3 is the [111] set; B40 changes sign (B40 = 1 gives B40' = -2/3,
    // P4 at the cube diagonal), B60 keeps it.
    const BkqArray rotated = rotateBkq(arrayOf(c4), c4ToC3Angles());
    const BkqArray c3 = arrayOf(cubicSet(inv, -1.0, 1.0, CubicAxis::Threefold111));
    for (int k = 2; k <= 6; k += 2)
        for (int q = 0; q <= k; ++q)
            EXPECT_LT(std::abs(rotated[k][q] - c3[k][q]), 1e-9) << "B" << k << q;
}

TEST(CubicApproximation, UncertaintiesListingAndAdoption) {
    Invariants inv;
    inv.s = {0.0, 300.0, 200.0};
    inv.sigmaS = {0.0, 3.0, 2.0};
    const auto set = cubicSet(inv, -5.0, 2.0, CubicAxis::Fourfold001);
    ASSERT_EQ(set.size(), 4u);
    EXPECT_NEAR(set[0].value, -std::sqrt(21.0 / 4.0) * 300.0, 1e-9);  // sign of B40
    EXPECT_NEAR(set[0].sigma, std::sqrt(21.0 / 4.0) * 3.0, 1e-12);
    EXPECT_NEAR(set[1].value / set[0].value, std::sqrt(5.0 / 14.0), 1e-12);
    EXPECT_NEAR(set[3].value / set[2].value, -std::sqrt(3.5), 1e-12);
    EXPECT_NEAR(set[3].sigma, std::sqrt(3.5) * std::sqrt(13.0 / 8.0) * 2.0, 1e-12);
}

}  // namespace
}  // namespace orvane::params
