// Normalisation tables, Stevens/Wybourne/unit-tensor conversions,
// energy units and the free-ion parameter forms.
#include <cmath>

#include <gtest/gtest.h>

#include "core/user_error.hpp"
#include "params/cf_conventions.hpp"
#include "params/energy_units.hpp"
#include "params/free_ion_conversion.hpp"
#include "params/stevens_lambda.hpp"
#include "params/value_cell.hpp"
#include "tests/params/cf_rows.hpp"

namespace orvane::params {
namespace {

using test::row;

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

TEST(UnitTensorFactor, ReducedMatrixElementsOfCk) {
    // <f||C(k)||f> = -7 (3 k 3; 0 0 0): -sqrt(28/15), sqrt(154)/11, -10 sqrt(3003)/429.
    EXPECT_NEAR(unitTensorFactor(2), -1.3662601021279, 1e-12);
    EXPECT_NEAR(unitTensorFactor(4), 1.1281521496356, 1e-12);
    EXPECT_NEAR(unitTensorFactor(6), -1.2773807700532, 1e-12);
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
    EXPECT_EQ(*unitConversionFactor(EnergyUnitCode::Kelvin, EnergyUnitCode::Wavenumber), 0.69502);
    EXPECT_EQ(*unitConversionFactor(EnergyUnitCode::MilliRydberg, EnergyUnitCode::Wavenumber), 109.7398);
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

}  // namespace
}  // namespace orvane::params
