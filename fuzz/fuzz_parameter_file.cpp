// libFuzzer target: any byte string given to the parameter-file reader must
// either parse or be refused with a UserError that names the file and a line;
// whatever parses must be written and read back to the same set.
//
// Build with clang (-DORVANE_BUILD_FUZZ=ON, target fuzz_parameter_file) and run
// with the examples and the malformed-file corpus as seeds, e.g.
//   fuzz_parameter_file work/ examples/ tests/engine/parameter_corpus/ \
//       -max_len=4096 -timeout=5 -max_total_time=720
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "core/user_error.hpp"
#include "engine/parameter_file.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    orvane::ParameterSet set;
    try {
        set = orvane::parseParameterText(text, "fuzz.par");
    } catch (const orvane::UserError& error) {
        if (!error.where() || error.where()->file != "fuzz.par" || error.where()->line < 1) std::abort();
        return 0;
    }
    // A set that was read must survive the writer: either it is refused as a
    // whole (UserError) or it reads back equal, apart from the switches the
    // writer never emits and the raw option text.
    try {
        const std::string written = orvane::parameterFileText(set);
        orvane::ParameterSet back = orvane::parseParameterText(written, "fuzz.par");
        back.optionLine = set.optionLine;
        back.hasOptionLine = set.hasOptionLine;
        back.switches.printHamiltonian = set.switches.printHamiltonian;
        if (!(back == set)) std::abort();
        if (orvane::parameterFileText(back) != written) std::abort();
    } catch (const orvane::UserError&) {
    }
    return 0;
}
