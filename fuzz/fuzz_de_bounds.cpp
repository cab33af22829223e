// libFuzzer target: any byte string given to the reader of differential
// evolution bounds must either parse or be refused with a UserError that
// names the file and a line; whatever parses holds at most kDEBoundsRowLimit
// rows of distinct names with finite limits, lower <= upper.
//   fuzz_de_bounds work/ -max_len=2048 -timeout=5
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "core/user_error.hpp"
#include "fit/de_settings.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    std::vector<orvane::DEBound> bounds;
    try {
        bounds = orvane::parseDEBounds(text, "fuzz.txt");
    } catch (const orvane::UserError& error) {
        if (!error.where() || error.where()->file != "fuzz.txt" || error.where()->line < 1) std::abort();
        return 0;
    }
    if (bounds.size() > orvane::kDEBoundsRowLimit) std::abort();
    std::set<std::string> names;
    for (const orvane::DEBound& bound : bounds) {
        if (bound.name.empty() || !names.insert(bound.name).second) std::abort();
        if (!std::isfinite(bound.lower) || !std::isfinite(bound.upper) || bound.lower > bound.upper) std::abort();
    }
    return 0;
}
