// The option line: switches found by substring in any order, the energy-unit
// precedence, the older IR-notation forms and the writer's fixed order.
#include "engine/run_switches.hpp"

#include <gtest/gtest.h>

namespace orvane {
namespace {

TEST(RunSwitches, FoundInAnyOrderAndWrittenBackInTableOrder) {
    const RunSwitches a = readRunSwitches("/noss/usezic/actualshell/Eunit=2 /ptgp= 12 /cubiccf");
    EXPECT_EQ(readRunSwitches("junk /cubiccf and /ptgp=12, then /Eunit=2/actualshell x /usezic /noss"), a);
    EXPECT_EQ(a.energyUnit, EnergyUnit::MilliElectronVolt);
    const RunSwitches all = readRunSwitches(
        "/ccf/printhm/spinmmin= 3 /ptgp= 31 /cubiccf/Eunit=4 /IRnotation= 2 /actualshell/usezic"
        "/t2correction/wrongrankss/noss/opimkpk/IRproper/detailedproperties");
    EXPECT_TRUE(all.opimkpk && all.noSpinSpin && all.wrongRankSpinSpin && all.t2Correction && all.useZic &&
                all.actualShell && all.cubicCF && all.printHamiltonian && all.correlationSections &&
                all.properRotationIrreps && all.detailedProperties);
    EXPECT_EQ(all.minSpinMultiplicity, 3);
    EXPECT_EQ(all.pointGroup, 31);
    RunSwitches back = readRunSwitches(runSwitchesText(all));
    back.printHamiltonian = true;
    EXPECT_EQ(back, all);
}

TEST(RunSwitches, SimilarTextsAreNotConfused) {
    // "/sccf" and "/lccf" do not contain "/ccf"; "/spinmmin=" needs a value >= 1.
    const RunSwitches s = readRunSwitches("/sccf /lccf /spinmmin= 0 /ptgp=");
    EXPECT_FALSE(s.correlationSections);
    EXPECT_FALSE(s.minSpinMultiplicity.has_value());
    EXPECT_FALSE(s.pointGroup.has_value());
}

}  // namespace
}  // namespace orvane
