// End-to-end reproductions of published and computed crystal-field levels of
// Pr3+, Nd3+ and Er3+ in LaF3 with the parameters of Carnall, Goodman, Rajnak
// & Rana, J. Chem. Phys. 90, 3443 (1989), and of the same engine run on the
// published f^n tables of H. Crosswhite (Argonne; the edition with the magnetic corrections of Chen,
// Liu, Margerie & Reid, J. Lumin. 128, 421 (2008)), written as a table directory, against Orvane's own.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "core/atomic_file.hpp"
#include "core/log_book.hpp"
#include "core/text.hpp"
#include "engine/energy_levels.hpp"
#include "tables/magnetic_tables.hpp"
#include "tables/published_tables.hpp"
#include "tables/reduced_tables.hpp"
#include "tables/table_directory.hpp"
#include "tables/three_body_tables.hpp"
#include "tests/engine/engine_test_support.hpp"
#include "tests/support/published_ion.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

using test::bkq;
using test::row;

using test::PublishedIon;
using test::readPublishedIon;

// The engine's parameter set of an ion (F^k form, EAVG 0, real Wybourne B(k,q), fold 2, "/noss").
ParameterSet parameterSetOf(const PublishedIon& ion, int n) {
    auto value = [&](const std::string& name) {
        const auto found = ion.parameters.find(name);
        return found == ion.parameters.end() ? 0.0 : found->second;
    };
    ParameterSet set;
    set.electronCount = n;
    set.fold = 2;
    set.mainFreeIon = {row("EAVG", 0), row("F2", value("F2")), row("F4", value("F4")), row("F6", value("F6")),
                       row("ZETA", value("ZETA"))};
    for (const char* name : {"ALPHA", "BETA", "GAMMA", "T2", "T3", "T4", "T6", "T7", "T8", "M0", "M2", "M4", "P2",
                             "P4", "P6"})
        set.otherFreeIon.push_back(row(name, value(name)));
    for (int k : {2, 4, 6})
        for (int q = 0; q <= k; q += 2) set.crystalField.push_back(bkq(k, q, value(fmt::format("B{}{}", k, q))));
    set.switches.noSpinSpin = true;
    return set;
}

// Crystal-field levels, one per Kramers doublet for odd n, ascending.
std::vector<double> crystalFieldLevels(const ParameterSet& set, const std::filesystem::path& directory) {
    MemoryLogBook log;
    const auto result = computeEnergyLevels(set, directory, log);
    std::vector<double> levels;
    const std::size_t step = set.electronCount % 2 == 1 ? 2 : 1;
    for (std::size_t i = 0; i < result.crystalField.levels.size(); i += step)
        levels.push_back(result.crystalField.levels[i].energy);
    return levels;
}

struct Deviation {
    double rms = 0.0, largest = 0.0;
};

// The lowest published.size() levels against the published list after removing the best constant
// (the published energy zero is not the barycentre).
Deviation deviationFrom(const std::vector<double>& published, const std::vector<double>& levels) {
    EXPECT_GE(levels.size(), published.size());
    const std::size_t count = std::min(levels.size(), published.size());
    double offset = 0.0;
    for (std::size_t i = 0; i < count; ++i) offset += (published[i] - levels[i]) / static_cast<double>(count);
    Deviation deviation;
    for (std::size_t i = 0; i < count; ++i) {
        const double d = published[i] - levels[i] - offset;
        deviation.rms += d * d / static_cast<double>(count);
        deviation.largest = std::max(deviation.largest, std::abs(d));
    }
    deviation.rms = std::sqrt(deviation.rms);
    return deviation;
}

// ---------------------------------------------------------------------------

TEST(LaF3Reproduction, PraseodymiumPublishedCalculatedLevels) {
    // Carnall et al. 1989, Pr3+:LaF3 appendix "Calc" column (91 levels, rounded to 1 cm^-1), with
    // M4 = 0.38 M0, P4 = 0.5 P2, P6 = 0.1 P2 and no spin-spin (as stated in that paper).
    ORVANE_REQUIRE_REFERENCE(reference);
    const auto ion = readPublishedIon(reference / "carnall-laf3" / "Pr3plus-LaF3.txt");
    ASSERT_EQ(ion.calculated.size(), 91u);
    const auto deviation = deviationFrom(ion.calculated, crystalFieldLevels(parameterSetOf(ion, 2),
                                                                            test::engineTableDirectory()));
    std::printf("Pr3+:LaF3, 91 published calculated levels: rms %.3f cm^-1, largest %.3f cm^-1\n", deviation.rms,
                deviation.largest);
    EXPECT_LT(deviation.rms, 0.5);
    EXPECT_LT(deviation.largest, 2.0);
}

// ---------------------------------------------------------------------------
// A table directory holding the published f^n tables in Orvane's file layouts. The term list
// (S, L and Casimir labels, same order as the published header) and the tables the engine does
// not read (coefficients of fractional parentage, V(12), V(14), V(16), spin-spin) are Orvane's own.

Eigen::MatrixXd symmetricFromHalf(const Eigen::MatrixXd& half) {
    Eigen::MatrixXd full = half + half.transpose().eval();
    full.diagonal() = half.diagonal();
    return full;
}

// A known misprint of the published f3/f11 tables: the three-body t7 diagonal of 2L (-0.026503 in
// Hansen, Judd & Crosswhite 1996).
void correctKnownErrors(PublishedTables& published, const std::vector<std::string>& labels) {
    const int n = published.electrons;
    auto at = [&](const std::string& label) {
        return static_cast<Eigen::Index>(std::find(labels.begin(), labels.end(), label) - labels.begin());
    };
    if (n == 3 || n == 11) published.threeBody[4](at("2L"), at("2L")) = (n == 3 ? -0.026503 : 0.026503);
}

// The "old" f3 spin-other-orbit block as it stood before the corrections of Chen et al. 2008 (the
// tables Carnall et al. 1989 used): the 4I row shifted by one partner and 4D-2F2 missing.
void makeOldF3MagneticBlock(PublishedTables& published, const std::vector<std::string>& labels) {
    auto at = [&](const std::string& label) {
        return static_cast<Eigen::Index>(std::find(labels.begin(), labels.end(), label) - labels.begin());
    };
    for (auto& m : published.magnetic) {
        const Eigen::Index i4 = at("4I");
        const double h2 = m(i4, at("2H2")), i2 = m(i4, at("2I")), k2 = m(i4, at("2K"));
        m(i4, at("2H2")) = 0.0;
        m(i4, at("2I")) = h2;
        m(i4, at("2K")) = i2;
        m(i4, at("2L")) = k2;
        m(at("4D"), at("2F2")) = 0.0;
    }
}

std::filesystem::path publishedTableDirectory(const std::filesystem::path& reference, int n, bool oldMagnetic,
                                              const std::string& name) {
    const auto own = test::engineTableDirectory();
    {
        MemoryLogBook log;
        loadEngineTables(n, own, log);  // makes sure Orvane's own files exist
    }
    const auto crossFile = reference / "fncross" / fmt::format("f{}cross", n);
    auto published = parsePublishedTables(readTextFile(crossFile), crossFile.string());
    const auto directory = test::scratchDirectory(name);
    auto copy = [&](const std::string& table) {
        const auto file = configurationFileName(n, table);
        writeFileAtomically(directory / file, readTextFile(*findCaseBlind(own, file)));
    };
    for (const char* table : {"state.lab", "cfp.val", "rmv12.val", "rmv14.val", "rmv16.val", "mess.val",
                              "rmziss.val"})
        copy(table);
    MemoryLogBook log;
    const auto terms = loadEngineTables(n, own, log).terms;
    std::vector<std::string> labels;
    for (const auto& term : terms) labels.push_back(term.label);
    EXPECT_EQ(published.labels.size(), labels.size());
    correctKnownErrors(published, labels);
    if (oldMagnetic) makeOldF3MagneticBlock(published, labels);
    auto write = [&](const std::string& table, const std::string& text) {
        writeFileAtomically(directory / configurationFileName(n, table), text);
    };
    for (int k : {2, 4, 6}) {
        write(fmt::format("rmu{}.val", k), reducedTableFileText(fmt::format("U({}) MATRIX  f{}  published", k, n),
                                                                published.unitTensor[static_cast<std::size_t>(k)]));
        write(fmt::format("rmf{}.val", k),
              reducedTableFileText(fmt::format("f({}) MATRIX  f{}  published", k, n),
                                   published.coulombCentred[static_cast<std::size_t>(k / 2 - 1)]));
    }
    write("rmv11.val", reducedTableFileText(fmt::format("V(11) MATRIX  f{}  published", n), published.doubleTensor[1]));
    // Three-body: the published legacy t2 back to t2' = t2 - (n - 2) e3 / (70 sqrt 2) (the engine builds t2 again).
    ThreeBodyOperators threeBody;
    for (std::size_t i = 0; i < threeBody.size(); ++i) threeBody[i] = symmetricFromHalf(published.threeBody[i]);
    const auto e3 = racahElectrostaticOperators(n, symmetricFromHalf(published.coulombCentred[0]),
                                                symmetricFromHalf(published.coulombCentred[1]),
                                                symmetricFromHalf(published.coulombCentred[2]))[2];
    threeBody[0] -= ((n - 2) / (70.0 * std::sqrt(2.0))) * e3;
    write("rmtic.val", threeBodyFileText(n, threeBody, true));
    const std::vector<Eigen::MatrixXd> magnetic(published.magnetic.begin(), published.magnetic.end());
    write("mesooci.val", pairRecordsText("published MK,PK", magnetic));
    write("rmzic.val", pairRecordsText("published MK,PK", magnetic));
    return directory;
}

TEST(LaF3Reproduction, NeodymiumAndErbiumOnPublishedAndOwnTables) {
    // Nd3+ (f3) and Er3+ (f11, through the conjugate f3): the same engine on the published f3 tables
    // (Crosswhite's, with the 2008 magnetic corrections; known errors corrected) and on Orvane's
    // tables gives the same levels (to the precision of the published elements). The published "Calc" levels were computed with the magnetic
    // tables before 2008: their rms is printed for both blocks, not asserted tightly.
    ORVANE_REQUIRE_REFERENCE(reference);
    const auto publishedTables = publishedTableDirectory(reference, 3, false, "published-f3-tables");
    const auto oldTables = publishedTableDirectory(reference, 3, true, "published-old-f3-tables");
    struct Case {
        const char* file;
        int n;
    };
    for (const Case& c : {Case{"Nd3plus-LaF3.txt", 3}, Case{"Er3plus-LaF3.txt", 11}}) {
        const auto ion = readPublishedIon(reference / "carnall-laf3" / c.file);
        const auto set = parameterSetOf(ion, c.n);
        const auto own = crystalFieldLevels(set, test::engineTableDirectory());
        const auto onPublished = crystalFieldLevels(set, publishedTables);
        const auto onOld = crystalFieldLevels(set, oldTables);
        ASSERT_EQ(own.size(), 182u) << c.file;
        ASSERT_EQ(onPublished.size(), own.size()) << c.file;
        const auto tables = deviationFrom(onPublished, own);
        const auto calc = deviationFrom(ion.calculated, own);
        const auto calcOld = deviationFrom(ion.calculated, onOld);
        std::printf("%s: own vs published tables rms %.4f, largest %.4f cm^-1; vs %zu published Calc levels: "
                    "rms %.2f, largest %.2f (corrected MK,PK), rms %.2f, largest %.2f (old MK,PK block)\n",
                    c.file, tables.rms, tables.largest, ion.calculated.size(), calc.rms, calc.largest, calcOld.rms,
                    calcOld.largest);
        // The published elements carry 6 decimals: Orvane's own tables rounded to 6 decimals move
        // these levels by rms 0.024 (Nd) / 0.030 (Er), largest 0.052 / 0.060 cm^-1 (measured), the
        // same size as the differences found here (rms 0.025 / 0.034, largest 0.061 / 0.079).
        EXPECT_LT(tables.rms, 0.05) << c.file;
        EXPECT_LT(tables.largest, 0.15) << c.file;
        EXPECT_LT(calc.rms, c.n == 3 ? 6.0 : 25.0) << c.file;
        EXPECT_LT(calcOld.rms, c.n == 3 ? 2.0 : 4.0) << c.file;
    }
}

}  // namespace
}  // namespace orvane
