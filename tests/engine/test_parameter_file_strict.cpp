// Structural faults of a parameter file that once read silently wrong: each
// edit of the delivered Pr example must be refused with the file, the line
// and the problem.
#include <gtest/gtest.h>

#include <string>

#include "core/atomic_file.hpp"
#include "core/user_error.hpp"
#include "engine/parameter_file.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

struct StructuralFault {
    const char* from;  // text of the example replaced ...
    const char* to;    // ... by this
    int line;          // line the error must name
    const char* message;
};

// Lines of Pr3plus-LaF3.par: 12 other count, 13-21 rows, 22 Bkq count,
// 23-31 Bkq rows, 32 option line.
const StructuralFault kFaults[] = {
    {"No. of crystal field parameters in Wybourne's convention = 9\n", "", 22, "Expected the count line"},
    {"convention = 9", "convention = 5", 28, "The file announces 5 crystal field parameters but 9 rows follow"},
    {"parameters = 9", "parameters = 8", 21, "The file announces 8 other free-ion parameters but 9 rows follow"},
    {"convention = 9", "convention = 9 rows", 22, "cannot be read"},
    {"6  6  -788  0", "2  0  -100  0", 31, "B20 is given twice: lines 23 and 31"},
    {"GAMMA  1371", "ALPHA  3", 15, "ALPHA is given twice: lines 13 and 15"},
    {"/noss/ptgp= 7 ", "EAVG 12", 32, "holds no switches"},
    {"/noss/ptgp= 7 \n", "/noss\n6  6  1  0\n", 33, "Nothing may follow the option line"},
};

TEST(ParameterFileStrict, StructuralFaultsAreRefusedWithFileAndLine) {
    const std::string text = readTextFile(test::sourceDirectory() / "examples" / "Pr3plus-LaF3.par");
    (void)parseParameterText(text, "Pr.par");  // the example itself reads
    for (const StructuralFault& fault : kFaults) {
        std::string edited = text;
        ASSERT_NE(edited.find(fault.from), std::string::npos) << fault.from;
        edited.replace(edited.find(fault.from), std::string(fault.from).size(), fault.to);
        try {
            (void)parseParameterText(edited, "Pr.par");
            ADD_FAILURE() << fault.message << ": read without error";
        } catch (const UserError& error) {
            EXPECT_EQ(error.describe().find("Pr.par:" + std::to_string(fault.line) + ": "), 0u) << error.describe();
            EXPECT_NE(error.describe().find(fault.message), std::string::npos) << error.describe();
        }
    }
}

}  // namespace
}  // namespace orvane
