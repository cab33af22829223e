// libFuzzer target: any byte string as a generated table. The seal check
// either accepts it or names a problem; the readers of state labels,
// fractional parentage and reduced matrix elements either read it or refuse
// it with a UserError naming the file. Nothing else may escape or crash.
//   fuzz_table_files work/ data/rme/ -max_len=4096 -timeout=5
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "core/user_error.hpp"
#include "tables/fractional_parentage.hpp"
#include "tables/reduced_tables.hpp"
#include "tables/state_labels.hpp"
#include "tables/table_seal.hpp"

namespace {

template <typename Read>
void expectReadOrRefused(Read read) {
    try {
        read();
    } catch (const orvane::UserError& error) {
        if (error.describe().find("fuzz") == std::string::npos) std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    if (const auto problem = orvane::tableTextProblem("fuzz.val", text); problem && problem->empty()) std::abort();
    expectReadOrRefused([&] { orvane::parseStateLabels(text, orvane::StateLabelForm::Standard, true, "fuzz.lab"); });
    expectReadOrRefused([&] { orvane::parseFractionalParentage(text, "fuzz.val"); });
    expectReadOrRefused([&] { orvane::parseReducedTable(text, 17, "fuzz.val"); });
    return 0;
}
