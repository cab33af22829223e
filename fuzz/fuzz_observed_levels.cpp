// libFuzzer target: any byte string given to the observed-levels reader must
// either parse or be refused with a UserError that names the file and a line;
// whatever parses must be written and read back to the same levels and
// g-factors, and written again to the same text.
//   fuzz_observed_levels work/ -max_len=2048 -timeout=5
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "core/user_error.hpp"
#include "fit/observed_levels_file.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    orvane::ObservedLevelsFile file;
    try {
        file = orvane::parseObservedLevelsText(text, "fuzz.txt");
    } catch (const orvane::UserError& error) {
        if (!error.where() || error.where()->file != "fuzz.txt" || error.where()->line < 1)
            std::abort();
        return 0;
    }
    // Everything the reader accepts the writer can carry.
    const std::string written = orvane::observedLevelsFileText(file.levels, file.gFactors);
    const orvane::ObservedLevelsFile back = orvane::parseObservedLevelsText(written, "fuzz.txt");
    if (!orvane::sameFileContent(back, file)) std::abort();
    if (orvane::observedLevelsFileText(back.levels, back.gFactors) != written) std::abort();
    return 0;
}
